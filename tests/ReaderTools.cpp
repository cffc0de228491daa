#include "ReaderTools.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/ModemService.h"

using std::chrono::milliseconds;

namespace {

ServiceCalls *theCalls = nullptr;

int onCommand(int, void *data)
{
    const auto *notify = static_cast<MOVA_STKNotifyData *>(data);
    if (notify && !notify->bTimeOut)
        theCalls->add({notify->enStkType, notify->sCmdId, std::chrono::steady_clock::now()});
    return 0;
}

int onDevice(int code, void *)
{
    theCalls->add({code, 0, std::chrono::steady_clock::now()});
    return 0;
}

// A card starts with every signal as it is by default, and ends with its parent.
pid_t start(const std::vector<std::string> &command, int output)
{
    std::vector<char *> arguments;
    for (const std::string &argument : command)
        arguments.push_back(const_cast<char *>(argument.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    pid_t process = 0;
    const int error =
        posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw std::runtime_error(command[0] + ": " + std::strerror(error));
    return process;
}

std::vector<std::string> withPort(std::vector<std::string> arguments, int reader)
{
    const char *const port = std::getenv(reader == 0 ? "VPCD_PORT" : "VPCD_PORT_2");
    if (!port)
        throw std::runtime_error("to be run by tests/reader/with-pcscd");
    arguments.insert(arguments.begin(), {"--port", port});
    return arguments;
}

} // namespace

CardProcess::CardProcess(std::vector<std::string> arguments, int reader)
    : CardProcess(VIRTUAL_CARD, withPort(std::move(arguments), reader))
{
}

CardProcess::CardProcess(const std::string &program, std::vector<std::string> arguments)
    : m_name(program.substr(program.rfind('/') + 1) + ": ")
{
    std::vector<std::string> command = {"setpriv", "--pdeathsig", "TERM", program};
    command.insert(command.end(), arguments.begin(), arguments.end());
    int pipe[2];
    if (pipe2(pipe, O_CLOEXEC) != 0)
        throw std::runtime_error(std::strerror(errno));
    m_process = start(command, pipe[1]);
    close(pipe[1]);
    m_listener = std::thread([this, output = pipe[0]] { listen(output); });
}

CardProcess::~CardProcess()
{
    end();
}

void CardProcess::listen(int output)
{
    FILE *const stream = fdopen(output, "r");
    char line[200];
    while (std::fgets(line, sizeof line, stream)) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_lines.emplace_back(line, Clock::now());
        m_change.notify_all();
    }
    std::fclose(stream);
}

std::optional<CardProcess::Clock::time_point> CardProcess::waitFor(const std::string &line,
                                                                   milliseconds most)
{
    const std::string whole = m_name + line + '\n';
    const auto end = Clock::now() + most;
    std::unique_lock<std::mutex> lock(m_mutex);
    while (m_change.wait_until(lock, end, [this] { return !m_lines.empty(); })) {
        const auto [said, when] = m_lines.front();
        m_lines.pop_front();
        if (said == whole)
            return when;
    }
    return std::nullopt;
}

void CardProcess::signal(int number)
{
    kill(m_process, number);
}

int CardProcess::end()
{
    if (m_process == 0)
        return 0;
    kill(m_process, SIGTERM);
    int status = 0;
    waitpid(m_process, &status, 0);
    m_listener.join();
    m_process = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

ServiceCalls::ServiceCalls()
{
    theCalls = this;
    MOVA_STK_RegisterCallBack(onCommand);
    MOVA_DevSrv_RegisterDevMgrCallback(onDevice);
}

ServiceCalls::~ServiceCalls()
{
    MOVA_STK_UnRegisterCallBack(onCommand);
    MOVA_DevSrv_UnRegisterDevMgrCallback(onDevice);
}

void ServiceCalls::add(const ServiceCall &call)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_calls.push_back(call);
    m_change.notify_all();
}

std::optional<ServiceCall> ServiceCalls::next(milliseconds most)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    if (!m_change.wait_for(lock, most, [this] { return !m_calls.empty(); }))
        return std::nullopt;
    const ServiceCall call = m_calls.front();
    m_calls.pop_front();
    return call;
}

std::optional<ServiceCall> ServiceCalls::next(int32_t type, milliseconds most)
{
    const auto end = std::chrono::steady_clock::now() + most;
    for (;;) {
        const auto left = std::chrono::ceil<milliseconds>(end - std::chrono::steady_clock::now());
        const auto call = next(std::max(left, milliseconds(0)));
        if (!call || call->type == type)
            return call;
    }
}

void answer(const ServiceCall &command)
{
    static constexpr uint16_t Text[] = {'5', 0};
    const auto type = _STK_UI_EN_STKTYPE(command.type);
    switch (command.type) {
    case MOVA_STKTYPE_DISPLAY_TEXT:
    case MOVA_STKTYPE_PLAY_TONE:
    case MOVA_STKTYPE_LAUNCH_BROWSER:
    case MOVA_STKTYPE_SETUP_IDLE_MODE_TEXT:
        MOVA_STKSrv_SendNoDataResponse(command.id, type, STK_UI_TR_SUCCESS);
        break;
    case MOVA_STKTYPE_SETUP_CALL:
        MOVA_STKSrv_SendNoDataResponse(command.id, type, STK_UI_TR_NOT_SUPPORTED);
        break;
    case MOVA_STKTYPE_GET_INKEY:
        MOVA_STKSrv_AnswerInKey(command.id, 1, Text);
        break;
    case MOVA_STKTYPE_GET_INPUT:
        MOVA_STKSrv_AnswerInput(command.id, 1, Text);
        break;
    case MOVA_STKTYPE_SELECT_ITEM: {
        MOVA_STKSubMenuInfo menu{};
        if (MOVA_STKSrv_GetSubMenu(command.id, &menu) != 0)
            break;
        MOVA_STKSrv_SelectSubMenuItem(command.id, MOVA_SUBMENU_ACTION_SELECT,
                                      menu.sItemCount ? menu.pItems[0].sItemId : int16_t(0));
        MOVA_STKSrv_ReleaseSubMenus(&menu);
    }
    }
}
