#include "Dialogue.h"

#include <limits>
#include <utility>

#include "ServiceStatus.h"

namespace {

bool givesDetails(ServiceFunction function)
{
    return function != ServiceFunction::AnswerInKey && function != ServiceFunction::AnswerInput &&
        function != ServiceFunction::SelectSubMenuItem &&
        function != ServiceFunction::SendNoDataResponse;
}

} // namespace

Dialogue::Dialogue(Transcript &transcript)
    : m_transcript(transcript)
{
}

// ---- The card's part ----

Dialogue::Word Dialogue::begin(ProactiveCommand command, std::chrono::milliseconds modemTime,
                               Time now)
{
    if (open())
        m_transcript.overtaken(m_id, m_command->body);
    drop();
    m_command = std::move(command);
    m_open = true;
    m_id = newId();
    if (std::holds_alternative<SetUpMenu>(m_command->body))
        m_deadline = now; // to keep a menu takes the modem no time
    else if (isAnsweredByModem(m_command->body))
        m_deadline = now + modemTime;
    else if (m_command->responseTime.count() != 0)
        m_deadline = now + m_command->responseTime;
    else
        m_deadline = Time::max();
    m_underWay |= !std::holds_alternative<SetUpMenu>(m_command->body);
    m_transcript.command(m_id, m_command->body);
    return {commandType(m_command->body), m_id, false, true};
}

Dialogue::Word Dialogue::end()
{
    drop();
    m_underWay = false;
    const int16_t id = newId();
    m_transcript.endOfSession(id);
    return {MOVA_STKTYPE_END_SESSION, id};
}

Dialogue::Word Dialogue::timeOut()
{
    Word word;
    word.timeOut = true;
    word.id = m_command ? m_id : newId();
    if (m_command)
        word.type = commandType(m_command->body);
    drop();
    m_underWay = false;
    m_transcript.timeOut(word.id);
    return word;
}

std::optional<Dialogue::Word> Dialogue::endByCard()
{
    if (m_choices == 0)
        return forget();
    drop(); // of the session before; the user has just chosen another
    return std::nullopt;
}

std::optional<Dialogue::Word> Dialogue::forget()
{
    // The card's main menu alone, at its start, is no session that anybody saw begin.
    if (m_underWay)
        return end();
    drop();
    return std::nullopt;
}

std::optional<Dialogue::Word> Dialogue::endAgain()
{
    return m_command || m_underWay ? std::nullopt : std::optional(end());
}

// ---- The terminal's part ----

void Dialogue::answer(const TerminalResponse &response, std::optional<ServiceFunction> function)
{
    m_transcript.response(m_id, m_command->body, response, function);
    m_open = false;
}

std::optional<TerminalResponse> Dialogue::leave()
{
    if (!open())
        return std::nullopt;
    const TerminalResponse response = isAnsweredByModem(m_command->body)
        ? m_command->modemAnswer
        : TerminalResponse{TerminalResponse::Result::Terminated};
    m_transcript.response(m_id, m_command->body, response, std::nullopt);
    drop();
    return response;
}

void Dialogue::choose(const CommandMenuItem &item)
{
    m_transcript.selection(item);
    m_underWay = true;
    ++m_choices;
}

std::optional<TerminalResponse> Dialogue::deliverChoice()
{
    --m_choices;
    return leave();
}

bool Dialogue::isNews(const Word &word) const
{
    return word.isCommand ? is(word.id) : word.timeOut || !m_underWay;
}

int32_t Dialogue::status(ServiceFunction function, int16_t id, int32_t type) const
{
    if (!is(id))
        return StatusNotInProgress;
    const CommandBody &body = m_command->body;
    const bool readable = givesDetails(function) && isAnsweredByModem(body);
    if (!m_open && !readable)
        return StatusNotInProgress;
    const bool withoutDetails = std::holds_alternative<UnknownCommand>(body);
    if (commandType(body) != type ||
        (withoutDetails && function != ServiceFunction::SendNoDataResponse))
        return StatusWrongCommand;
    return fault(function);
}

int32_t Dialogue::fault(ServiceFunction function) const
{
    return m_command ? faultStatus(m_command->faults, function) : StatusSuccess;
}

bool Dialogue::isLateKey(int16_t id)
{
    if (m_lateKey != id || is(id))
        return false;
    m_lateKey.reset();
    return true;
}

void Dialogue::drop()
{
    if (!m_command)
        return;
    const auto *inkey = std::get_if<GetInkey>(&m_command->body);
    if (m_open && inkey && inkey->inputType == YesOrNo)
        m_lateKey = m_id;
    m_command.reset();
}

int16_t Dialogue::newId()
{
    const bool last = m_lastId == std::numeric_limits<int16_t>::max();
    m_lastId = last ? int16_t(1) : int16_t(m_lastId + 1);
    return m_lastId;
}
