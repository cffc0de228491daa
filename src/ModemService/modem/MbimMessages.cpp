#include "MbimMessages.h"

#include <algorithm>
#include <cstring>

#include "cat/Hex.h"

namespace {

using MbimMessages::CardState;
using MbimMessages::Message;

Message owned(MbimMessage *message)
{
    return {message, mbim_message_unref};
}

CardState stateOf(MbimSubscriberReadyState state)
{
    switch (state) {
    case MBIM_SUBSCRIBER_READY_STATE_SIM_NOT_INSERTED:
    case MBIM_SUBSCRIBER_READY_STATE_BAD_SIM:
    case MBIM_SUBSCRIBER_READY_STATE_FAILURE:
    case MBIM_SUBSCRIBER_READY_STATE_NO_ESIM_PROFILE:
        return CardState::Missing;
    case MBIM_SUBSCRIBER_READY_STATE_NOT_INITIALIZED:
        return CardState::Starting;
    default:
        return CardState::There;
    }
}

std::string nameOf(MbimService service, guint32 number)
{
    if (service == MBIM_SERVICE_INVALID)
        return "unknown service, " + std::to_string(number);
    const char *const name = mbim_cid_get_printable(service, number);
    return mbim_service_get_string(service) + (' ' + (name ? name : std::to_string(number)));
}

} // namespace

namespace MbimMessages {

std::string nameOf(const MbimMessage &message)
{
    switch (mbim_message_get_message_type(&message)) {
    case MBIM_MESSAGE_TYPE_COMMAND: {
        const auto type = mbim_message_command_get_command_type(&message);
        return ::nameOf(mbim_message_command_get_service(&message),
                        mbim_message_command_get_cid(&message)) +
            (type == MBIM_MESSAGE_COMMAND_TYPE_SET ? " set" : " query");
    }
    case MBIM_MESSAGE_TYPE_COMMAND_DONE:
        return ::nameOf(mbim_message_command_done_get_service(&message),
                        mbim_message_command_done_get_cid(&message));
    case MBIM_MESSAGE_TYPE_INDICATE_STATUS:
        return ::nameOf(mbim_message_indicate_status_get_service(&message),
                        mbim_message_indicate_status_get_cid(&message));
    default:
        return "unknown message";
    }
}

std::string inWords(const MbimLink::Result &result)
{
    if (!result.message)
        return result.isDone() ? "opened" : result.error;
    const std::string name = nameOf(*result.message);
    if (!result.isDone())
        return name + ": " + result.error +
            (result.status ? " (" + std::to_string(*result.status) + ')' : "");
    guint32 size = 0;
    const guint8 *const data =
        mbim_message_command_done_get_raw_information_buffer(result.message, &size);
    const bool isSupport = size == MbimSupport::Types &&
        mbim_message_command_done_get_service(result.message) == MBIM_SERVICE_STK &&
        mbim_message_command_done_get_cid(result.message) == MBIM_CID_STK_PAC;
    return name + ": done" + (isSupport ? ", " + cat::toHex({data, size}) : "");
}

Message enterPin(const Pin &pin)
{
    std::string digits(pin.digits(), pin.size());
    MbimMessage *const message = mbim_message_pin_set_new(
        MBIM_PIN_TYPE_PIN1, MBIM_PIN_OPERATION_ENTER, digits.c_str(), "", nullptr);
    explicit_bzero(digits.data(), digits.size());
    return owned(message);
}

Message subscribe()
{
    guint32 toolkit[] = {MBIM_CID_STK_PAC};
    guint32 card[] = {MBIM_CID_BASIC_CONNECT_SUBSCRIBER_READY_STATUS};
    MbimEventEntry entries[] = {{*mbim_uuid_from_service(MBIM_SERVICE_STK), 1, toolkit},
                                {*mbim_uuid_from_service(MBIM_SERVICE_BASIC_CONNECT), 1, card}};
    const MbimEventEntry *const list[] = {&entries[0], &entries[1], nullptr};
    return owned(mbim_message_device_service_subscribe_list_set_new(2, list, nullptr));
}

Message terminalResponse(const cat::Bytes &data)
{
    return owned(mbim_message_stk_terminal_response_set_new(static_cast<guint32>(data.size()),
                                                            data.data(), nullptr));
}

// The library's own message would pad the envelope within its announced length.
Message envelope(const cat::Bytes &data)
{
    return MbimLink::raw(MBIM_SERVICE_STK, MBIM_CID_STK_ENVELOPE, data.data(), data.size());
}

std::optional<bool> offersToolkit(const MbimMessage &services)
{
    MbimDeviceServiceElementArray *all = nullptr;
    guint32 count = 0;
    if (!mbim_message_device_services_response_parse(&services, &count, nullptr, &all, nullptr))
        return std::nullopt;
    const bool offers = std::any_of(all, all + count, [](const MbimDeviceServiceElement *service) {
        return mbim_uuid_to_service(&service->device_service_id) == MBIM_SERVICE_STK;
    });
    mbim_device_service_element_array_free(all);
    return offers;
}

CardState cardStateIn(const MbimMessage &answer)
{
    MbimSubscriberReadyState state = MBIM_SUBSCRIBER_READY_STATE_INITIALIZED;
    mbim_message_subscriber_ready_status_response_parse(&answer, &state, nullptr, nullptr, nullptr,
                                                        nullptr, nullptr, nullptr);
    return stateOf(state);
}

std::optional<CardState> cardStateNotified(const MbimMessage &notification)
{
    MbimSubscriberReadyState state = MBIM_SUBSCRIBER_READY_STATE_INITIALIZED;
    if (!mbim_message_subscriber_ready_status_notification_parse(
            &notification, &state, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr))
        return std::nullopt;
    return stateOf(state);
}

PinState pinStateIn(const MbimMessage &answer)
{
    constexpr guint32 MostTries = 15; // of a card; what is more is no number of them
    MbimPinType type = MBIM_PIN_TYPE_UNKNOWN;
    MbimPinState state = MBIM_PIN_STATE_UNLOCKED;
    guint32 tries = 0;
    if (!mbim_message_pin_response_parse(&answer, &type, &state, &tries, nullptr) ||
        state != MBIM_PIN_STATE_LOCKED)
        return {};
    if (type == MBIM_PIN_TYPE_PIN1 && tries != 0)
        return {PinState::Wanted, tries > MostTries ? 0 : static_cast<int>(tries)};
    const bool isCards = type == MBIM_PIN_TYPE_PIN1 || type == MBIM_PIN_TYPE_PUK1;
    return {isCards ? PinState::Blocked : PinState::Free};
}

std::optional<MbimSupport> supportIn(const MbimMessage &answer)
{
    const guint8 *bytes = nullptr;
    if (!mbim_message_stk_pac_response_parse(&answer, &bytes, nullptr))
        return std::nullopt;
    MbimSupport support;
    std::copy_n(bytes, MbimSupport::Types, support.of.begin());
    return support;
}

uint16_t statusIn(const MbimMessage &answer)
{
    guint32 status = 0;
    mbim_message_stk_terminal_response_response_parse(&answer, nullptr, nullptr, &status, nullptr);
    return static_cast<uint16_t>(status);
}

std::optional<Notified> commandNotified(const MbimMessage &notification)
{
    MbimStkPacType type = MBIM_STK_PAC_TYPE_PROACTIVE_COMMAND;
    guint32 size = 0;
    const guint8 *data = nullptr;
    if (!mbim_message_stk_pac_notification_parse(&notification, &type, &size, &data, nullptr))
        return std::nullopt;
    return Notified{commandIn({data, size}), type == MBIM_STK_PAC_TYPE_PROACTIVE_COMMAND};
}

} // namespace MbimMessages
