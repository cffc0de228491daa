#ifndef DEVICEFILE_H
#define DEVICEFILE_H

#include <string>

/// What stands under the name of a device; it is not opened, which may take long, and change
/// something.
enum class DeviceFile {
    Missing,
    Folder,
    NoDevice, ///< a file that is neither
    Serial, ///< a serial port
    Other
};
DeviceFile deviceFileAt(const std::string &name);

#endif
