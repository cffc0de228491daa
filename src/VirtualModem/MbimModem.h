#ifndef MBIMMODEM_H
#define MBIMMODEM_H

#include "MbimFrame.h"
#include "Modem.h"

/// The toolkit behind MBIM: the services Basic Connect, as far as it takes to open a modem, and
/// STK.
class MbimModem : public Modem {
public:
    using Modem::Modem;

    void portOpened() override { }
    void portClosed() override;
    void received(cat::ByteView bytes) override;
    void tellUnsolicited() override;
    void tellStateOfCard() override;

private:
    struct Answer;
    struct Row;
    static const std::vector<Row> &rows();

    std::optional<cat::Bytes> proactiveCommand(const cat::Bytes &command, uint8_t type) override;
    bool menuAgain(const cat::Bytes &command) override;
    void sessionEnded() override { }
    cat::Bytes profile() override;

    void forgetHost();
    void take(const mbim::Message &message);
    void command(const mbim::Message &message);
    Answer dispatch(const mbim::Command &command);
    uint32_t stateOfCard();

    Answer deviceCapabilities(const mbim::Command &command);
    Answer readyStatus(const mbim::Command &command);
    Answer radio(const mbim::Command &command);
    Answer pin(const mbim::Command &command);
    Answer deviceServices(const mbim::Command &command);
    Answer subscribe(const mbim::Command &command);
    Answer pac(const mbim::Command &command);
    Answer terminalResponse(const mbim::Command &command);
    Answer envelope(const mbim::Command &command);

    size_t position(uint8_t type) const;
    bool isWanted(uint8_t type) const;
    uint8_t support(uint8_t type) const;
    void notify(const cat::Bytes &command, bool isToBeAnswered);
    cat::Bytes readyInformation();
    static mbim::Message indication(const mbim::Uuid &service, uint32_t cid,
                                    const cat::Bytes &information);
    void send(const mbim::Message &message);
    void done(const mbim::Message &message, const Answer &answer);
    void simpleDone(mbim::Type type, uint32_t transaction, uint32_t number);

    mbim::Parser m_parser;
    bool m_isOpen = false;
    size_t m_longest = 4096; // message
    cat::Bytes m_hostControl; // PacHostControl
    std::vector<mbim::Message> m_unsolicited;
    std::optional<mbim::Message> m_menu; // to be told once more
    int m_lockedAnswers = 0; // left, to what asks for the PIN
};

#endif
