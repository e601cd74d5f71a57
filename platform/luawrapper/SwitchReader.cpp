#include "SwitchReader.h"

namespace luawrapper
{

utils::NVError readSwitches(const std::string& file, Switch&)
{
    return {utils::EErrorCode::NotFound, "无法读取模块配置 " + file};
}

} // namespace luawrapper
