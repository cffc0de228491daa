#ifndef PCSCCHANNEL_H
#define PCSCCHANNEL_H

#include <map>
#include <string>
#include <vector>

#include "CardChannel.h"
#include "Pcsc.h"

/// A card in a reader of the smart-card daemon.
class PcscChannel : public CardChannel {
public:
    /// The reader is the first whose name begins with the text; where it is empty the first with a
    /// card that can be connected and was not passed over.
    explicit PcscChannel(std::string nameStart);
    ~PcscChannel() override;

    Status connect() override;
    void disconnect() override;
    bool isPresent() override;
    bool passOver() override;
    Protocol protocol() const override { return m_protocol; }
    std::optional<cat::Bytes> transmit(cat::ByteView command) override;

private:
    Status connectFirst(const std::vector<std::string> &readers);
    Status connectCard();
    std::vector<std::string> candidates(const std::vector<Reader> &readers) const;
    bool isPassedOver(const std::string &reader) const;
    void giveBack(DWORD disposition);

    const std::string m_nameStart;
    PcscContext m_context;
    std::string m_reader; // the one chosen last
    SCARDHANDLE m_card = 0;
    bool m_connected = false;
    Protocol m_protocol = Protocol::T0;
    DWORD m_changes = 0; // the daemon's count of cards that came and went, of the card given back
    std::map<std::string, DWORD> m_passedOver; // readers, with that count
    cat::Bytes m_answer; // room for the longest one
};

#endif
