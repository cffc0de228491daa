#ifndef CARDSTART_H
#define CARDSTART_H

#include <chrono>
#include <cstdint>
#include <optional>

#include "Apdu.h"
#include "cat/Bytes.h"
#include "toolkit/Notices.h"
#include "toolkit/PortReports.h"

/// How a SIM card starts: which application it has, its PIN, and what it is told of the terminal
/// (ETSI TS 102 221 clause 14, 3GPP TS 51.011 clause 11.2).
class CardStart {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// Who makes the exchanges.
    class Host {
    public:
        virtual ~Host() = default;
        /// Nothing: the card is gone, or busy and the step is to be taken again.
        virtual std::optional<ApduAnswer> sendStep(Apdu command, Time now) = 0;
        /// The same for what is never repeated: the card has it even where it says that it is busy.
        virtual std::optional<ApduAnswer> sendOnce(Apdu command, Time now) = 0;
        virtual void tell(NoticeId id, std::optional<uint16_t> status = std::nullopt) = 0;
        virtual void wantPin(std::optional<int> triesLeft, bool wrong) = 0;
        virtual void pinDone() = 0;
        /// It is no SIM card.
        virtual void leaveAlone() = 0;
        virtual void profileSent(bool taken, Time now) = 0;
    };
    explicit CardStart(Host &host)
        : m_host(host)
    {
    }

    /// One exchange, the next on the way.
    void takeStep(Time now);
    /// The start is over: the toolkit can run.
    bool isDone() const { return m_state.step == Step::Run; }
    bool waitsForPerson() const { return m_state.step == Step::AwaitPin; }
    /// Under which class the card is spoken to: that of a UICC, or of a 2G card.
    bool isUicc() const { return m_state.isUicc; }
    /// An invalid PIN: the card goes on without.  Where none is awaited nothing happens.
    void answerPin(const Pin &pin);
    /// Its application is to be selected once more.
    void selectAgain();
    /// A card without a menu: why, as far as anybody knows.
    NoticeId noMenu() const { return m_state.noMenu; }
    std::optional<uint16_t> noMenuStatus() const { return m_state.noMenuStatus; }
    /// From the beginning again, with whatever card.
    void forgetCard();

private:
    // What comes next, in this order.
    enum class Step {
        SelectMasterFile,
        SelectDirectory,
        ReadDirectory,
        SelectApplication,
        SelectMasterFile2g,
        SelectGsm,
        SelectUnderUiccClass,
        ReadPinState,
        AwaitPin,
        VerifyPin,
        SendProfile,
        ReportInitialised,
        Run
    };

    void selectMasterFile(Time now);
    void selectDirectory(Time now);
    void readDirectory(Time now);
    void selectApplication(Time now);
    void selectMasterFile2g(Time now);
    void selectGsm(Time now);
    void selectUnderUiccClass(Time now);
    void takeApplication(NoticeId kind, cat::ByteView selectAnswer);
    void leaveClass2g();
    void readPinState(Time now);
    void verifyPin(Time now);
    void sendProfile(Time now);
    void reportInitialised(Time now);

    void wantPin(std::optional<int> triesLeft, bool wrong);
    void goOnWithoutPin(NoticeId why, NoticeId noMenu,
                        std::optional<uint16_t> status = std::nullopt);
    void passPin();
    Apdu toolkitApdu(uint8_t ins, uint8_t p1, uint8_t p2) const;

    Host &m_host;
    struct State {
        Step step = Step::SelectMasterFile;
        bool isUicc = true;
        uint8_t record = 1; // of EF_DIR, to be read next
        uint8_t records = 0;
        uint8_t recordLength = 0;
        bool answersAsUicc = false; // whatever its applications are
        bool isIsim = false;
        cat::Bytes application{}; // its identifier, or the beginning of that
        cat::Bytes isim{}; // the same, where the card has no USIM
        uint8_t pinKey = 0x01;
        std::optional<int> pinTries{};
        Pin pin{};
        NoticeId noMenu = NoticeId::NoMenu;
        std::optional<uint16_t> noMenuStatus{};
        bool pinSettled = false; // declined, or entered into a 2G card
        bool profileSent = false;
    };
    State m_state;
};

#endif
