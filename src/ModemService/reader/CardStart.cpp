#include "CardStart.h"

#include <algorithm>
#include <utility>

#include "CardFiles.h"
#include "cat/Response.h"

using cat::Bytes;

namespace {

constexpr uint8_t MaxRecords = 32;

const Bytes MasterFile{0x3f, 0x00};
const Bytes ApplicationDirectory{0x2f, 0x00}; // EF_DIR, ETSI TS 102 221 clause 13.1
const Bytes DirectoryGsm{0x7f, 0x20}; // 3GPP TS 51.011 clause 10.3
const Bytes Identification{0x2f, 0xe2}; // EF_ICCID, ETSI TS 102 221 clause 13.2
// ETSI TS 101 220 annex E.
const Bytes UsimBeginning{0xa0, 0x00, 0x00, 0x00, 0x87, 0x10, 0x02};
const Bytes IsimBeginning{0xa0, 0x00, 0x00, 0x00, 0x87, 0x10, 0x04};

bool begins(const Bytes &application, const Bytes &beginning)
{
    return application.size() >= beginning.size() && application.size() <= 16 &&
        std::equal(beginning.begin(), beginning.end(), application.begin());
}

// By file identifier, or by the beginning of an application identifier (ETSI TS 102 221 clause
// 11.1.1), returning the file control parameters; for a 2G card 3GPP TS 51.011 clause 9.2.1.
Apdu selectFile(const Bytes &file)
{
    return {0x00, 0xa4, 0x00, 0x04, file, 256};
}

Apdu selectByName(const Bytes &identifier)
{
    return {0x00, 0xa4, 0x04, 0x04, identifier, 256};
}

Apdu selectFile2g(const Bytes &file)
{
    return {0xa0, 0xa4, 0x00, 0x00, file, 256};
}

} // namespace

void CardStart::takeStep(Time now)
{
    switch (m_state.step) {
    case Step::SelectMasterFile:
        return selectMasterFile(now);
    case Step::SelectDirectory:
        return selectDirectory(now);
    case Step::ReadDirectory:
        return readDirectory(now);
    case Step::SelectApplication:
        return selectApplication(now);
    case Step::SelectMasterFile2g:
        return selectMasterFile2g(now);
    case Step::SelectGsm:
        return selectGsm(now);
    case Step::SelectUnderUiccClass:
        return selectUnderUiccClass(now);
    case Step::ReadPinState:
        return readPinState(now);
    case Step::VerifyPin:
        return verifyPin(now);
    case Step::SendProfile:
        return sendProfile(now);
    case Step::ReportInitialised:
        return reportInitialised(now);
    case Step::AwaitPin:
    case Step::Run:
        return;
    }
}

void CardStart::selectMasterFile(Time now)
{
    const auto answer = m_host.sendStep(selectFile(MasterFile), now);
    if (!answer)
        return;
    m_state.answersAsUicc = ::isDone(answer->status);
    m_state.step = m_state.answersAsUicc ? Step::SelectDirectory : Step::SelectMasterFile2g;
}

void CardStart::selectDirectory(Time now)
{
    const auto answer = m_host.sendStep(selectFile(ApplicationDirectory), now);
    if (!answer)
        return;
    const FileParameters file = readFileParameters(answer->data);
    m_state.application = UsimBeginning;
    m_state.isim = IsimBeginning;
    m_state.recordLength = file.recordLength;
    m_state.records = file.records ? std::min(file.records, MaxRecords) : MaxRecords;
    m_state.step = ::isDone(answer->status) ? Step::ReadDirectory : Step::SelectApplication;
}

void CardStart::readDirectory(Time now)
{
    Apdu readRecord{0x00, 0xb2, m_state.record, 0x04};
    readRecord.expected = m_state.recordLength ? m_state.recordLength : 256;
    const auto answer = m_host.sendStep(std::move(readRecord), now);
    if (!answer)
        return;
    const Bytes application = applicationIdentifier(answer->data);
    const bool found = begins(application, UsimBeginning);
    if (found)
        m_state.application = application;
    if (begins(application, IsimBeginning))
        m_state.isim = application;
    if (found || !::isDone(answer->status) || m_state.record++ >= m_state.records)
        m_state.step = Step::SelectApplication;
}

void CardStart::selectApplication(Time now)
{
    const auto answer = m_host.sendStep(selectByName(m_state.application), now);
    if (!answer)
        return;
    if (::isDone(answer->status)) {
        takeApplication(m_state.isIsim ? NoticeId::Isim : NoticeId::Usim, answer->data);
    } else if (std::exchange(m_state.isIsim, true)) {
        m_state.step = Step::SelectMasterFile2g;
    } else {
        m_state.application = m_state.isim;
    }
}

void CardStart::takeApplication(NoticeId kind, cat::ByteView selectAnswer)
{
    if (!m_state.profileSent)
        m_host.tell(kind);
    const std::optional<uint8_t> pin = readFileParameters(selectAnswer).pin;
    m_state.pinKey = pin.value_or(0);
    if (pin)
        m_state.step = Step::ReadPinState;
    else
        passPin();
}

void CardStart::selectMasterFile2g(Time now)
{
    m_state.isUicc = false;
    const auto answer = m_host.sendStep(selectFile2g(MasterFile), now);
    if (!answer)
        return;
    if (::isDone(answer->status))
        m_state.step = Step::SelectGsm;
    else
        leaveClass2g();
}

// What knows the other class alone may be a SIM card all the same.
void CardStart::leaveClass2g()
{
    if (!m_state.answersAsUicc) {
        m_host.leaveAlone();
        return;
    }
    m_state.isUicc = true;
    m_state.application = DirectoryGsm;
    m_state.step = Step::SelectUnderUiccClass;
}

// The directory of a 2G SIM, or else what every card of a network operator has, and no bank's.
void CardStart::selectUnderUiccClass(Time now)
{
    const auto answer = m_host.sendStep(selectFile(m_state.application), now);
    if (!answer)
        return;
    const bool isDirectory = m_state.application == DirectoryGsm;
    if (::isDone(answer->status))
        takeApplication(isDirectory ? NoticeId::Sim : NoticeId::Uicc, answer->data);
    else if (isDirectory)
        m_state.application = Identification;
    else
        m_host.leaveAlone();
}

void CardStart::selectGsm(Time now)
{
    const auto answer = m_host.sendStep(selectFile2g(DirectoryGsm), now);
    if (!answer)
        return;
    if (!::isDone(answer->status)) {
        leaveClass2g();
        return;
    }
    if (!m_state.profileSent)
        m_host.tell(NoticeId::Sim);
    const Chv1 chv1 = readChv1(answer->data);
    if (chv1.enabled)
        wantPin(chv1.triesLeft, false);
    else
        passPin();
}

// An empty VERIFY tells how many tries are left, and uses none (ETSI TS 102 221 clause 11.1.9); a
// card that does not know it may want its PIN all the same.
void CardStart::readPinState(Time now)
{
    const auto answer = m_host.sendStep({0x00, 0x20, 0x00, m_state.pinKey}, now);
    if (!answer)
        return;
    if ((answer->status & 0xfff0) == 0x63c0)
        wantPin(answer->status & 0x0f, false);
    else if (answer->status == 0x6983)
        wantPin(0, false);
    else if ((answer->status & 0xff00) == 0x6700)
        wantPin(std::nullopt, false);
    else
        passPin();
}

void CardStart::wantPin(std::optional<int> triesLeft, bool wrong)
{
    if (m_state.pinSettled) {
        passPin();
        return;
    }
    if (triesLeft == 0) {
        goOnWithoutPin(NoticeId::PinBlocked, NoticeId::NoMenuPinBlocked);
        return;
    }
    m_state.step = Step::AwaitPin;
    m_state.pinTries = triesLeft;
    m_host.wantPin(triesLeft, wrong);
}

void CardStart::answerPin(const Pin &pin)
{
    if (m_state.step != Step::AwaitPin)
        return;
    if (pin.isValid()) {
        m_state.pin = pin;
        m_state.step = Step::VerifyPin;
        return;
    }
    m_host.pinDone();
    goOnWithoutPin(NoticeId::PinLeftOut, NoticeId::NoMenuPinLeftOut);
}

void CardStart::verifyPin(Time now)
{
    // Padded to eight bytes: ETSI TS 102 221 clause 9.5.1, 3GPP TS 51.011 clause 9.3.
    Apdu verify{uint8_t(m_state.isUicc ? 0x00 : 0xa0), 0x20, 0x00,
                uint8_t(m_state.isUicc ? m_state.pinKey : 0x01)};
    verify.data.assign(8, 0xff);
    std::copy_n(m_state.pin.digits(), m_state.pin.size(), verify.data.begin());
    verify.secret = verify.data.size();
    m_state.pin = Pin();
    const auto answer = m_host.sendOnce(std::move(verify), now);
    m_host.pinDone();
    if (!answer)
        return;
    const uint16_t status = answer->status;
    const bool wrongOnUicc = (status & 0xfff0) == 0x63c0;
    if (wrongOnUicc || status == 0x9804) { // the latter, and 9840: 3GPP TS 51.011 clause 9.4.5
        std::optional<int> left = m_state.pinTries;
        if (wrongOnUicc)
            left = status & 0x0f;
        else if (left)
            --*left;
        wantPin(left, true);
    } else if (status == 0x6983 || status == 0x9840) {
        wantPin(0, true);
    } else if (::isDone(status)) {
        m_state.pinSettled = !m_state.isUicc; // a UICC says itself what it needs
        passPin();
    } else {
        goOnWithoutPin(NoticeId::PinUnchecked, NoticeId::NoMenuPinUnchecked, status);
    }
}

// The second notice is for a card that then has no menu.
void CardStart::goOnWithoutPin(NoticeId why, NoticeId noMenu, std::optional<uint16_t> status)
{
    m_host.tell(why, status);
    m_state.noMenu = noMenu;
    m_state.noMenuStatus = status;
    m_state.pinSettled = true;
    passPin();
}

// What comes behind the PIN.
void CardStart::passPin()
{
    if (!m_state.profileSent)
        m_state.step = Step::SendProfile;
    else
        m_state.step = m_state.isUicc ? Step::ReportInitialised : Step::Run;
}

void CardStart::sendProfile(Time now)
{
    Apdu profile = toolkitApdu(0x10, 0, 0);
    profile.data = cat::terminalProfile();
    const auto answer = m_host.sendStep(std::move(profile), now);
    if (!answer)
        return;
    m_state.profileSent = true;
    m_host.profileSent(::isDone(answer->status), now);
    passPin();
}

// ETSI TS 102 221 clause 11.1.2 and 14.5.2: the application is initialised in the terminal.
void CardStart::reportInitialised(Time now)
{
    if (m_host.sendStep(toolkitApdu(0xf2, 0x01, 0x0c), now))
        m_state.step = Step::Run;
}

void CardStart::selectAgain()
{
    m_state.step = m_state.isUicc ? Step::SelectApplication : Step::SelectGsm;
}

void CardStart::forgetCard()
{
    m_state = State();
}

Apdu CardStart::toolkitApdu(uint8_t ins, uint8_t p1, uint8_t p2) const
{
    return {uint8_t(m_state.isUicc ? 0x80 : 0xa0), ins, p1, p2};
}
