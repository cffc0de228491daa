#include "DeviceFile.h"

#include <cerrno>
#include <filesystem>

#include <sys/stat.h>
#include <sys/sysmacros.h>

DeviceFile deviceFileAt(const std::string &name)
{
    struct stat found { };
    if (stat(name.c_str(), &found) != 0)
        return errno == ENOENT || errno == ENOTDIR ? DeviceFile::Missing : DeviceFile::Other;
    if (S_ISDIR(found.st_mode))
        return DeviceFile::Folder;
    if (!S_ISCHR(found.st_mode))
        return DeviceFile::NoDevice;
    // A pseudo-terminal, which may speak anything, does not stand there.
    const std::string number =
        std::to_string(major(found.st_rdev)) + ':' + std::to_string(minor(found.st_rdev));
    std::error_code error;
    const auto subsystem =
        std::filesystem::read_symlink("/sys/dev/char/" + number + "/subsystem", error);
    return subsystem.filename() == "tty" ? DeviceFile::Serial : DeviceFile::Other;
}
