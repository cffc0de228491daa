#ifndef SERVICEFUNCTION_H
#define SERVICEFUNCTION_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// The functions of the service, so that a card's faults and the transcript can name them.
enum class ServiceFunction {
    RegisterCallBack,
    UnRegisterCallBack,
    RegisterDevMgrCallback,
    UnRegisterDevMgrCallback,
    GetMainMenu,
    ReleaseMenus,
    GetSubMenu,
    ReleaseSubMenus,
    SelectMenuItem,
    SelectSubMenuItem,
    GetIdleModePrompt,
    GetPlayTone,
    GetLaunchBrowser,
    GetInKeyRequest,
    GetInputRequest,
    GetPromptText,
    GetRefreshInfo,
    AnswerInKey,
    AnswerInput,
    SendNoDataResponse
};

/// The name of the C function, e.g. "MOVA_STKSrv_GetSubMenu".
const char *functionName(ServiceFunction function);
std::optional<ServiceFunction> functionByName(const std::string &name);
std::vector<std::string> functionNames();

/// Calls that are made to fail, with the status that each returns (never 0).
using Faults = std::map<ServiceFunction, int32_t>;
/// The status that the call is made to return, success where it is not made to fail.
int32_t faultStatus(const Faults &faults, ServiceFunction function);

#endif
