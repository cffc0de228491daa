#ifndef MBIMLINK_H
#define MBIMLINK_H

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <libmbim-glib.h>

#include "GlibLoop.h"

/// The way to one MBIM modem: opens it, sends commands, hears its notifications.  One thread.
/// Nothing is called any more once close() was called.
class MbimLink {
public:
    using Message = std::unique_ptr<MbimMessage, void (*)(MbimMessage *)>;
    /// What came of opening, or of a command.
    struct Result {
        const MbimMessage *message = nullptr; ///< the answer, where there is one
        std::optional<int> status; ///< MbimStatus; nothing where the modem did not answer
        std::string error; ///< empty: it was done
        bool timedOut = false;

        bool isDone() const { return error.empty(); }
    };
    using Done = std::function<void(const Result &)>;
    using Notified = std::function<void(const MbimMessage &)>;

    MbimLink(Notified notified, std::function<void()> lost);
    ~MbimLink();

    /// Beside a modem manager through its proxy, which keeps the device open for several programs.
    void open(const std::string &device, Done done);
    void command(Message message, std::chrono::seconds patience, Done done);
    /// A message of a service that has no functions of its own; the modem's number is put in.
    static Message raw(MbimService service, guint32 command, const uint8_t *data, size_t size);
    /// Waits a moment for the modem's last words.
    void close();
    /// The same for a modem that says nothing any more.
    void drop();
    bool isOpen() const { return m_open; }

    GlibLoop &loop() { return m_loop; }

private:
    struct Call;
    static void isMade(GObject *, GAsyncResult *result, gpointer data);
    static void isOpened(GObject *, GAsyncResult *result, gpointer data);
    static void isAnswered(GObject *, GAsyncResult *result, gpointer data);
    static void tell(gpointer data);
    static void indicated(MbimDevice *, MbimMessage *message, gpointer self);
    static void removed(MbimDevice *, gpointer self);

    GlibLoop m_loop;
    const Notified m_notified;
    const std::function<void()> m_lost;
    MbimDevice *m_device = nullptr;
    GCancellable *m_cancellable = nullptr;
    bool m_open = false;
    std::shared_ptr<MbimLink *> m_self; // what calls under way know; replaced when they are over
};

#endif
