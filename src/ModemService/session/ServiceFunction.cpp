#include "ServiceFunction.h"

#include <algorithm>
#include <iterator>

#include "ServiceStatus.h"

namespace {

// In the order of ServiceFunction.
const char *const FunctionNames[] = {
    "MOVA_STK_RegisterCallBack",
    "MOVA_STK_UnRegisterCallBack",
    "MOVA_DevSrv_RegisterDevMgrCallback",
    "MOVA_DevSrv_UnRegisterDevMgrCallback",
    "MOVA_STKSrv_GetMainMenu",
    "MOVA_STKSrv_ReleaseMenus",
    "MOVA_STKSrv_GetSubMenu",
    "MOVA_STKSrv_ReleaseSubMenus",
    "MOVA_STKSrv_SelectMenuItem",
    "MOVA_STKSrv_SelectSubMenuItem",
    "MOVA_STKSrv_GetIdleModePrompt",
    "MOVA_STKSrv_GetPlayTone",
    "MOVA_STKSrv_GetLaunchBrowser",
    "MOVA_STKSrv_GetInKeyRequest",
    "MOVA_STKSrv_GetInputRequest",
    "MOVA_STKSrv_GetPromptText",
    "MOVA_STKSrv_GetRefreshInfo",
    "MOVA_STKSrv_AnswerInKey",
    "MOVA_STKSrv_AnswerInput",
    "MOVA_STKSrv_SendNoDataResponse",
};
static_assert(std::size(FunctionNames) ==
                  static_cast<size_t>(ServiceFunction::SendNoDataResponse) + 1,
              "one name for each function");

} // namespace

const char *functionName(ServiceFunction function)
{
    return FunctionNames[static_cast<size_t>(function)];
}

std::optional<ServiceFunction> functionByName(const std::string &name)
{
    const auto found = std::find(std::begin(FunctionNames), std::end(FunctionNames), name);
    if (found == std::end(FunctionNames))
        return std::nullopt;
    return static_cast<ServiceFunction>(found - std::begin(FunctionNames));
}

std::vector<std::string> functionNames()
{
    return {std::begin(FunctionNames), std::end(FunctionNames)};
}

int32_t faultStatus(const Faults &faults, ServiceFunction function)
{
    const auto fault = faults.find(function);
    return fault == faults.end() ? StatusSuccess : fault->second;
}
