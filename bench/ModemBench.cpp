/* From a modem's command to the window's answer on the wire: the service at an AT port, answered in
 * its callbacks, against a plain program that echoes the same bytes at the same kind of port.
 *
 *     build/bench/ModemBench [ROUNDS]
 *
 * Then the service is left alone for some seconds, and the times that its session's thread wakes up
 * are counted.
 */
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <termios.h>
#include <unistd.h>

#include "CardHost.h"
#include "platform/ModemService.h"

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

const std::string Command = "\r\n+CUSATP: D00D8103012180820281028D020441\r\n";
const std::string Response = "AT+CUSATT=\"810301218082028281830100\"\r";

[[noreturn]] void giveUp(const char *what)
{
    std::fprintf(stderr, "ModemBench: %s\n", what);
    std::exit(1);
}

/* The modem's end of a pseudo-terminal. */
struct Port {
    Port()
        : master(posix_openpt(O_RDWR | O_NOCTTY))
    {
        termios raw{};
        if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0 ||
            tcgetattr(master, &raw) != 0)
            giveUp("no pseudo-terminal");
        cfmakeraw(&raw);
        tcsetattr(master, TCSANOW, &raw);
        device = ptsname(master);
    }
    void say(const std::string &text) const
    {
        if (write(master, text.data(), text.size()) != ssize_t(text.size()))
            giveUp("the port takes nothing");
    }
    std::string line() const
    {
        std::string text;
        char bytes[512];
        while (text.empty() || text.back() != '\r') {
            pollfd input{master, POLLIN, 0};
            const bool comes = poll(&input, 1, 10000) == 1;
            const ssize_t count = comes ? read(master, bytes, sizeof bytes) : 0;
            if (count <= 0)
                giveUp("no line came");
            text.append(bytes, size_t(count));
        }
        return text;
    }
    const int master;
    std::string device;
};

/* The person, at once. */
int onCommand(int, void *data)
{
    const auto *notify = static_cast<MOVA_STKNotifyData *>(data);
    if (notify->enStkType == MOVA_STKTYPE_DISPLAY_TEXT)
        MOVA_STKSrv_SendNoDataResponse(notify->sCmdId, _STK_UI_EN_STKTYPE(notify->enStkType),
                                       STK_UI_TR_SUCCESS);
    return 0;
}

/* This thread, and those that it starts from now on, where there are so many processors. */
void stayOn(int processor)
{
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(processor, &one);
    sched_setaffinity(0, sizeof one, &one);
}

void echo(const std::string &device)
{
    const int port = open(device.c_str(), O_RDWR | O_NOCTTY);
    char bytes[512];
    for (std::string text;; text.clear()) {
        while (text.size() < Command.size()) {
            const ssize_t count = read(port, bytes, sizeof bytes);
            if (count <= 0)
                return;
            text.append(bytes, size_t(count));
        }
        if (write(port, Response.data(), Response.size()) < 0)
            return;
    }
}

double microseconds(const Port &port, const char *after)
{
    const auto start = Clock::now();
    port.say(Command);
    if (port.line() != Response)
        giveUp("another answer");
    const auto time = Clock::now() - start;
    port.say(after);
    return std::chrono::duration<double, std::micro>(time).count();
}

long wakeUps()
{
    long all = 0, count;
    for (const auto &task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream status(task.path() / "status");
        for (std::string word; status >> word;) {
            if (word == "voluntary_ctxt_switches:" && status >> count)
                all += count;
        }
    }
    return all;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char **argv)
{
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 2000;
    Port modem, plain;
    stayOn(1); // both that answer; otherwise it is luck which of them sits beside the modem
    std::thread(echo, plain.device).detach();
    MOVA_STK_RegisterCallBack(onCommand);
    CardHost::openModem(Modem::Kind::At, modem.device);
    stayOn(0);
    std::string said;
    do {
        said = modem.line();
        modem.say(said == "AT+CPIN?\r" ? "\r\n+CPIN: READY\r\n\r\nOK\r\n" : "\r\nOK\r\n");
    } while (said != "AT+CUSATA=1\r");
    std::vector<double> service, direct;
    for (int round = 0; round < rounds; ++round) {
        service.push_back(microseconds(modem, "\r\nOK\r\n+CUSATEND\r\n"));
        std::this_thread::sleep_for(1ms); // the session's end is told
        direct.push_back(microseconds(plain, ""));
        std::this_thread::sleep_for(1ms); // both find processors that sleep
    }
    std::printf("answered in the callback %.1f us, echoed %.1f us, ratio %.2f\n", median(service),
                median(direct), median(service) / median(direct));
    std::this_thread::sleep_for(7s); // the start comes to rest
    const long before = wakeUps();
    std::this_thread::sleep_for(5s);
    std::printf("idle for five seconds: %ld wake-ups besides this one\n", wakeUps() - before - 1);
    std::fflush(stdout);
    std::_Exit(0); // the plain program never ends
}
