#include "ProactiveCommand.h"

#include <algorithm>
#include <type_traits>

const CommandMenuItem *CommandMenu::find(int16_t id) const
{
    const auto found = std::find_if(items.begin(), items.end(),
                                    [id](const CommandMenuItem &item) { return item.id == id; });
    return found == items.end() ? nullptr : &*found;
}

ServiceStatus codeText(const ProactiveCommand &command, TerminalResponse &response)
{
    if (!command.answerCoding || !response.text ||
        response.result != TerminalResponse::Result::Performed)
        return StatusSuccess;
    response.coded = cat::encodeTextString(*response.text, *command.answerCoding);
    if (!response.coded)
        return StatusNotEncodable;
    if (response.coded->size() > command.answerRoom)
        return StatusTooLong;
    const auto *inkey = std::get_if<GetInkey>(&command.body);
    if (inkey && inkey->inputType == YesOrNo) // ETSI TS 102 223 clause 8.15
        response.coded = {uint8_t(*command.answerCoding), uint8_t(*response.text == "1")};
    return StatusSuccess;
}

int32_t commandType(const CommandBody &body)
{
    return std::visit(
        [](const auto &command) -> int32_t {
            using Command = std::decay_t<decltype(command)>;
            if constexpr (std::is_same_v<Command, UnknownCommand>)
                return command.type;
            else
                return Command::Type;
        },
        body);
}

const char *commandName(const CommandBody &body)
{
    return std::visit([](const auto &command) { return std::decay_t<decltype(command)>::Name; },
                      body);
}

const CommandMenu *commandMenu(const CommandBody &body)
{
    if (const auto *setUpMenu = std::get_if<SetUpMenu>(&body))
        return &setUpMenu->menu;
    if (const auto *selectItem = std::get_if<SelectItem>(&body))
        return &selectItem->menu;
    return nullptr;
}

bool isAnsweredByModem(const CommandBody &body)
{
    return std::holds_alternative<SetUpMenu>(body) || std::holds_alternative<Refresh>(body) ||
        std::holds_alternative<SendSs>(body) || std::holds_alternative<SendShortMessage>(body) ||
        std::holds_alternative<SendUssd>(body);
}

const char *resultName(TerminalResponse::Result result)
{
    switch (result) {
    case TerminalResponse::Result::Performed:
        return "ok";
    case TerminalResponse::Result::BackwardMove:
        return "back";
    case TerminalResponse::Result::Cancelled:
        return "cancelled";
    case TerminalResponse::Result::Terminated:
        return "terminated";
    case TerminalResponse::Result::NotSupported:
        return "notSupported";
    case TerminalResponse::Result::NoResponse:
        return "noResponse";
    case TerminalResponse::Result::Unable:
        return "unable";
    case TerminalResponse::Result::Other:
        break;
    }
    return "other";
}
