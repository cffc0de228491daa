#include "MbimLink.h"

#include <cstring>
#include <fstream>
#include <utility>

namespace {

constexpr guint OpenSeconds = 15;
constexpr std::chrono::seconds CloseTime{2};

struct ErrorHolder {
    GError *error = nullptr;
    ~ErrorHolder() { g_clear_error(&error); }
};

bool isProxyRunning()
{
    std::ifstream sockets("/proc/net/unix");
    for (std::string line; std::getline(sockets, line);) {
        if (line.find("@mbim-proxy") != std::string::npos)
            return true;
    }
    return false;
}

} // namespace

struct MbimLink::Call {
    std::weak_ptr<MbimLink *> link;
    Done done;
    Message sent{nullptr, wiped};
    Message answer{nullptr, mbim_message_unref};
    ErrorHolder holder{};

    // It may be a PIN, or what a person has typed.
    static void wiped(MbimMessage *message)
    {
        guint32 size = 0;
        explicit_bzero(const_cast<guint8 *>(mbim_message_get_raw(message, &size, nullptr)), size);
        mbim_message_unref(message);
    }

    // Null where nobody wants to hear of it any more.
    static std::unique_ptr<Call> taken(gpointer data, MbimLink *&link)
    {
        std::unique_ptr<Call> call(static_cast<Call *>(data));
        const auto self = call->link.lock();
        link = self ? *self : nullptr;
        return link ? std::move(call) : nullptr;
    }
};

MbimLink::MbimLink(Notified notified, std::function<void()> lost)
    : m_notified(std::move(notified))
    , m_lost(std::move(lost))
{
}

MbimLink::~MbimLink()
{
    close();
}

void MbimLink::open(const std::string &device, Done done)
{
    drop();
    m_self = std::make_shared<MbimLink *>(this);
    m_cancellable = g_cancellable_new();
    const GlibLoop::Use use(m_loop);
    GFile *const file = g_file_new_for_path(device.c_str());
    mbim_device_new(file, m_cancellable, isMade, new Call{m_self, std::move(done)});
    g_object_unref(file);
}

void MbimLink::isMade(GObject *, GAsyncResult *result, gpointer data)
{
    ErrorHolder holder;
    MbimDevice *const device = mbim_device_new_finish(result, &holder.error);
    MbimLink *link = nullptr;
    auto call = Call::taken(data, link);
    if (!call) {
        if (device)
            g_object_unref(device);
        return;
    }
    if (!device) {
        call->done({nullptr, std::nullopt, holder.error->message});
        return;
    }
    link->m_device = device;
    // Before it is opened: the first notifications come at once.
    g_signal_connect(device, MBIM_DEVICE_SIGNAL_INDICATE_STATUS, G_CALLBACK(indicated), link);
    g_signal_connect(device, MBIM_DEVICE_SIGNAL_REMOVED, G_CALLBACK(removed), link);
    const auto flags =
        isProxyRunning() ? MBIM_DEVICE_OPEN_FLAGS_PROXY : MBIM_DEVICE_OPEN_FLAGS_NONE;
    mbim_device_open_full(device, flags, OpenSeconds, link->m_cancellable, isOpened,
                          call.release());
}

void MbimLink::isOpened(GObject *source, GAsyncResult *result, gpointer data)
{
    ErrorHolder holder;
    const bool opened =
        mbim_device_open_full_finish(reinterpret_cast<MbimDevice *>(source), result, &holder.error);
    MbimLink *link = nullptr;
    const auto call = Call::taken(data, link);
    if (!call)
        return;
    link->m_open = opened;
    const bool timedOut = g_error_matches(holder.error, MBIM_CORE_ERROR, MBIM_CORE_ERROR_TIMEOUT);
    call->done({nullptr, std::nullopt, opened ? "" : holder.error->message, timedOut});
}

void MbimLink::command(Message message, std::chrono::seconds patience, Done done)
{
    if (!m_open)
        return;
    const GlibLoop::Use use(m_loop);
    mbim_message_set_transaction_id(message.get(), mbim_device_get_next_transaction_id(m_device));
    const auto call = new Call{m_self, std::move(done)};
    call->sent.reset(message.release());
    mbim_device_command(m_device, call->sent.get(), static_cast<guint>(patience.count()),
                        m_cancellable, isAnswered, call);
}

// The library tells a notification when it is idle, but an answer at once: an answer waits for its
// idle time, too, lest it overtakes what the modem has said before it.
void MbimLink::isAnswered(GObject *source, GAsyncResult *result, gpointer data)
{
    Call *const call = static_cast<Call *>(data);
    call->answer.reset(mbim_device_command_finish(reinterpret_cast<MbimDevice *>(source), result,
                                                  &call->holder.error));
    GSource *const idle = g_idle_source_new();
    g_source_set_callback(
        idle,
        [](gpointer answered) {
            tell(answered);
            return G_SOURCE_REMOVE;
        },
        call, nullptr);
    g_source_attach(idle, g_main_context_get_thread_default());
    g_source_unref(idle);
}

void MbimLink::tell(gpointer data)
{
    MbimLink *link = nullptr;
    const auto call = Call::taken(data, link);
    if (!call)
        return;
    const MbimMessage *const answer = call->answer.get();
    GError *&error = call->holder.error;
    if (answer)
        mbim_message_response_get_result(answer, MBIM_MESSAGE_TYPE_COMMAND_DONE, &error);
    Result outcome{answer, std::nullopt, ""};
    if (answer && !error)
        outcome.status = MBIM_STATUS_ERROR_NONE;
    if (error) {
        outcome.error = error->message;
        if (error->domain == MBIM_STATUS_ERROR)
            outcome.status = error->code;
    }
    call->done(outcome);
}

MbimLink::Message MbimLink::raw(MbimService service, guint32 command, const uint8_t *data,
                                size_t size)
{
    Message message(mbim_message_command_new(0, service, command, MBIM_MESSAGE_COMMAND_TYPE_SET),
                    mbim_message_unref);
    mbim_message_command_append(message.get(), data, static_cast<guint32>(size));
    return message;
}

void MbimLink::indicated(MbimDevice *, MbimMessage *message, gpointer self)
{
    static_cast<MbimLink *>(self)->m_notified(*message);
}

void MbimLink::removed(MbimDevice *, gpointer self)
{
    static_cast<MbimLink *>(self)->m_lost();
}

void MbimLink::close()
{
    if (m_open) {
        bool closed = false;
        const GlibLoop::Use use(m_loop);
        const auto isClosed = [](GObject *source, GAsyncResult *result, gpointer data) {
            ErrorHolder holder;
            mbim_device_close_finish(reinterpret_cast<MbimDevice *>(source), result, &holder.error);
            const std::unique_ptr<std::weak_ptr<bool>> done(
                static_cast<std::weak_ptr<bool> *>(data));
            if (const auto alive = done->lock())
                *alive = true;
        };
        const std::shared_ptr<bool> done(&closed, [](bool *) {});
        g_signal_handlers_disconnect_by_data(m_device, this);
        m_self.reset(); // nobody wants to hear of the rest
        mbim_device_close(m_device, static_cast<guint>(CloseTime.count()), nullptr, isClosed,
                          new std::weak_ptr<bool>(done));
        m_loop.runUntil(std::chrono::steady_clock::now() + CloseTime, [&] { return closed; });
    }
    drop();
}

void MbimLink::drop()
{
    m_self.reset();
    m_open = false;
    if (m_cancellable) {
        g_cancellable_cancel(m_cancellable);
        g_clear_object(&m_cancellable);
    }
    if (m_device) {
        const GlibLoop::Use use(m_loop);
        g_signal_handlers_disconnect_by_data(m_device, this);
        mbim_device_close_force(m_device, nullptr);
        g_clear_object(&m_device);
    }
    m_loop.run(); // what was cancelled says so
}
