#ifndef ATMODEM_H
#define ATMODEM_H

#include <string>
#include <vector>

#include "Modem.h"

/// The toolkit behind AT commands, 3GPP TS 27.007 clause 12.
class AtModem : public Modem {
public:
    using Modem::Modem;

    void portOpened() override;
    void portClosed() override;
    void received(cat::ByteView bytes) override;
    void tellUnsolicited() override;
    void tellStateOfCard() override;

private:
    struct Call;
    struct Answer;
    struct Row;
    static const std::vector<Row> &rows();

    std::optional<cat::Bytes> proactiveCommand(const cat::Bytes &command, uint8_t type) override;
    bool menuAgain(const cat::Bytes &command) override;
    void sessionEnded() override;
    cat::Bytes profile() override;

    void take(const std::string &line);
    Answer carryOut(const std::string &line);
    Answer dispatch(const Call &call);
    std::optional<cat::Bytes> hexOf(const Call &call, size_t index) const;

    Answer attention(const Call &call);
    Answer echo(const Call &call);
    Answer errors(const Call &call);
    Answer identity(const Call &call);
    Answer pin(const Call &call);
    Answer functionality(const Call &call);
    Answer readProfile(const Call &call);
    Answer writeProfile(const Call &call);
    Answer download(const Call &call);
    Answer activate(const Call &call);
    Answer envelope(const Call &call);
    Answer terminalResponse(const Call &call);

    void notify(const cat::Bytes &command);
    std::string error(int number) const;
    std::string quoted(const std::string &hex) const;
    void sendLine(const std::string &line);

    std::string m_line;
    bool m_hasEcho = true;
    int m_errors = 0; // +CMEE
    cat::Bytes m_terminalProfile;
    cat::Bytes m_activeProfile;
    bool m_combines = false; // +CUSATD: at the next start of the card
    bool m_reports = false;
    bool m_repeated = false; // a menu, whose answer the card does not get again
    std::vector<std::string> m_unsolicited;
    int m_form = 0;
};

#endif
