/* How long a menu selection takes over the virtual reader of a real smart-card daemon: through the
 * session, against the same commands sent to the daemon directly, by turns.
 *
 *     tests/reader/with-pcscd build/bench/ReaderBench [ROUNDS]
 *
 * A round trip: menu selection envelope, FETCH of a DISPLAY TEXT, its terminal response.  The two
 * cards are alike, one in each reader, and answer at once.
 *
 * What the session costs is seen where the answers come inside its callbacks.  To a user on another
 * thread it does not tell the card's word before some time after each answer, twice a round trip.
 */
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>

#include <winscard.h>

#include "CardHost.h"
#include "ReaderTools.h"
#include "cat/Bytes.h"
#include "platform/ModemService.h"

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr int TripsATurn = 500, HeldBackTripsATurn = 2;
constexpr int16_t Item = 3; // of menus.json: a DISPLAY TEXT

[[noreturn]] void giveUp(const char *what)
{
    std::fprintf(stderr, "ReaderBench: %s\n", what);
    std::exit(1);
}

/* The card in the second reader, without the session. */
class RawCard {
public:
    RawCard()
    {
        DWORD protocol = 0;
        if (SCardEstablishContext(SCARD_SCOPE_SYSTEM, nullptr, nullptr, &m_context) !=
                SCARD_S_SUCCESS ||
            SCardConnect(m_context, "Virtual reader 00 01", SCARD_SHARE_EXCLUSIVE,
                         SCARD_PROTOCOL_T1, &m_card, &protocol) != SCARD_S_SUCCESS)
            giveUp("cannot connect to the card in the second reader");
        // The menu is set up.
        fetchAndRespond(send({0x80, 0x10, 0x00, 0x00, 0x01, 0x01}), 0x25, 0x00);
    }
    ~RawCard()
    {
        SCardDisconnect(m_card, SCARD_UNPOWER_CARD);
        SCardReleaseContext(m_context);
    }

    void roundTrips()
    {
        for (int i = 0; i < TripsATurn; ++i)
            roundTrip();
    }

private:
    void roundTrip()
    {
        fetchAndRespond(send({0x80, 0xc2, 0x00, 0x00, 0x09, 0xd3, 0x07, 0x82, 0x02, 0x01, 0x81,
                              0x90, 0x01, Item, 0x00}),
                        0x21, 0x80);
    }

    /* The last status word. */
    uint8_t send(const cat::Bytes &command)
    {
        uint8_t answer[258];
        DWORD size = sizeof answer;
        if (SCardTransmit(m_card, SCARD_PCI_T1, command.data(), command.size(), nullptr, answer,
                          &size) != SCARD_S_SUCCESS ||
            size < 2 || (answer[size - 2] != 0x90 && answer[size - 2] != 0x91))
            giveUp("the card in the second reader refuses a command");
        return answer[size - 1];
    }

    void fetchAndRespond(uint8_t length, uint8_t type, uint8_t qualifier)
    {
        send({0x80, 0x12, 0x00, 0x00, length});
        send({0x80, 0x14, 0x00, 0x00, 0x0c, 0x81, 0x03, 0x01, type, qualifier, 0x82, 0x02, 0x82,
              0x81, 0x83, 0x01, 0x00});
    }

    SCARDCONTEXT m_context = 0;
    SCARDHANDLE m_card = 0;
};

/* One user who is called, and acts at once: on the session's own thread. */
std::mutex theMutex;
std::condition_variable theEnd;
int tripsLeft = 0;

void select()
{
    if (MOVA_STKSrv_SelectMenuItem(1, Item) != 0)
        giveUp("the session refuses the menu selection");
}

int onCommand(int, void *data)
{
    const auto *notify = static_cast<MOVA_STKNotifyData *>(data);
    if (notify->enStkType == MOVA_STKTYPE_DISPLAY_TEXT) {
        answer({notify->enStkType, notify->sCmdId, {}});
    } else if (notify->enStkType == MOVA_STKTYPE_END_SESSION) {
        const std::lock_guard<std::mutex> lock(theMutex);
        if (--tripsLeft >= 0)
            select();
        else
            theEnd.notify_all();
    }
    return 0;
}

void roundTripsInCallbacks()
{
    MOVA_STK_RegisterCallBack(onCommand);
    std::unique_lock<std::mutex> lock(theMutex);
    tripsLeft = TripsATurn;
    CardHost::endSession(); // which calls for the first selection
    if (!theEnd.wait_for(lock, 10s, [] { return tripsLeft < 0; }))
        giveUp("the session did not end");
    lock.unlock();
    MOVA_STK_UnRegisterCallBack(onCommand);
}

/* Another user, on a thread that is woken for each event and wakes the session for each answer. */
void roundTripsOnAThread()
{
    ServiceCalls calls;
    for (int i = 0; i < HeldBackTripsATurn; ++i) {
        select();
        const auto text = calls.next(MOVA_STKTYPE_DISPLAY_TEXT, 5s);
        if (!text)
            giveUp("no DISPLAY TEXT came from the session");
        answer(*text);
        if (!calls.next(MOVA_STKTYPE_END_SESSION, 5s))
            giveUp("the session did not end");
    }
}

/* Of a round trip. */
template <class Turn> double microseconds(Turn turn, int trips = TripsATurn)
{
    const auto start = Clock::now();
    turn();
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count() / trips;
}

double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char **argv)
{
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 40;
    const std::string file = STK_SOURCE_DIR "/cards/conformance/menus.json";
    CardProcess first({"--latency", "0", file}), second({"--latency", "0", file}, 1);
    if (!first.waitFor("starts", 10s) || !second.waitFor("starts", 10s))
        giveUp("the virtual cards do not start");
    {
        ServiceCalls calls;
        CardHost::openReader("Virtual reader 00 00");
        if (!calls.next(MOVA_STKTYPE_SETUP_MENU, 10s))
            giveUp("no menu came from the session");
    }
    RawCard raw;

    std::vector<double> inCallbacks, onAThread, direct;
    for (int round = 0; round < rounds; ++round) {
        onAThread.push_back(microseconds(roundTripsOnAThread, HeldBackTripsATurn));
        inCallbacks.push_back(microseconds(roundTripsInCallbacks));
        direct.push_back(microseconds([&raw] { raw.roundTrips(); }));
    }
    const double transmit = median(direct);
    const auto print = [&](const char *what, double time) {
        std::printf("%-52s %7.1f us a round trip, %6.0f a second, ratio %.2f\n", what, time,
                    1e6 / time, time / transmit);
    };
    std::printf("Medians of %d turns:\n", rounds);
    print("SCardTransmit alone:", transmit);
    print("session, answered in its callbacks:", median(inCallbacks));
    print("session, answered by another thread (held back):", median(onAThread));
    return 0;
}
