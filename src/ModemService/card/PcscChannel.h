#ifndef PCSCCHANNEL_H
#define PCSCCHANNEL_H

#include <string>

#include "CardChannel.h"
#include "Pcsc.h"

/// A card in a reader of the smart-card daemon.
class PcscChannel : public CardChannel {
public:
    /// The reader is the first whose name begins with the text; where it is empty the first that
    /// has a card, or the first.
    explicit PcscChannel(std::string nameStart);
    ~PcscChannel() override;

    Status connect() override;
    void disconnect() override;
    bool isPresent() override;
    Protocol protocol() const override { return m_protocol; }
    std::optional<cat::Bytes> transmit(cat::ByteView command) override;

private:
    Status chooseReader();
    Status connectCard();
    void giveBack(DWORD disposition);

    const std::string m_nameStart;
    PcscContext m_context;
    std::string m_reader; // the one chosen last
    SCARDHANDLE m_card = 0;
    bool m_connected = false;
    Protocol m_protocol = Protocol::T0;
    DWORD m_changes = 0; // the daemon's count of cards that came and went, at connect()
    cat::Bytes m_answer; // room for the longest one
};

#endif
