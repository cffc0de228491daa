#include "ModemMonitor.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>

#include <libudev.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "SerialPort.h"

namespace {

template <auto unref> struct Unref {
    template <class Type> void operator()(Type *object) const { unref(object); }
};
using Udev = std::unique_ptr<udev, Unref<udev_unref>>;
using Device = std::unique_ptr<udev_device, Unref<udev_device_unref>>;
using Enumeration = std::unique_ptr<udev_enumerate, Unref<udev_enumerate_unref>>;
using Monitor = std::unique_ptr<udev_monitor, Unref<udev_monitor_unref>>;

// Where modems stand in the system.
constexpr const char *Subsystems[] = {"tty", "usbmisc", "wwan"};

std::string textOf(const char *text)
{
    return text ? text : "";
}

bool startsWith(const std::string &text, const char *beginning)
{
    return text.compare(0, std::strlen(beginning), beginning) == 0;
}

// Nothing for what is no modem.
std::optional<Modem::Kind> kindOf(udev_device *device)
{
    const std::string subsystem = textOf(udev_device_get_subsystem(device));
    const std::string name = textOf(udev_device_get_sysname(device));
    udev_device *const port =
        udev_device_get_parent_with_subsystem_devtype(device, "usb", "usb_interface");
    const std::string driver = port ? textOf(udev_device_get_driver(port)) : "";
    if (subsystem == "usbmisc")
        return startsWith(name, "cdc-wdm") && driver == "cdc_mbim"
            ? std::optional(Modem::Kind::Mbim)
            : std::nullopt;
    if (subsystem == "wwan") {
        const std::string type = textOf(udev_device_get_sysattr_value(device, "type"));
        if (type == "MBIM")
            return Modem::Kind::Mbim;
        return type == "AT" ? std::optional(Modem::Kind::At) : std::nullopt;
    }
    // The drivers of modems' serial ports; an adapter for any serial device has another.
    static const char *const Drivers[] = {"option", "qcserial", "sierra", "cdc_acm", "hso"};
    const bool isModems = std::any_of(std::begin(Drivers), std::end(Drivers),
                                      [&](const char *each) { return driver == each; });
    return isModems ? std::optional(Modem::Kind::At) : std::nullopt;
}

std::string nameOf(udev_device *device)
{
    // What belongs to a modem need not know its name.
    if (auto *const usb =
            udev_device_get_parent_with_subsystem_devtype(device, "usb", "usb_device"))
        device = usb;
    const auto property = [device](const char *name, const char *instead) {
        std::string text = textOf(udev_device_get_property_value(device, name));
        return text.empty() ? textOf(udev_device_get_property_value(device, instead)) : text;
    };
    const std::string vendor = property("ID_VENDOR_FROM_DATABASE", "ID_VENDOR");
    const std::string model = property("ID_MODEL_FROM_DATABASE", "ID_MODEL");
    return vendor.empty() || model.empty() ? vendor + model : vendor + ' ' + model;
}

std::optional<Modem> modemOf(udev_device *device)
{
    const auto kind = kindOf(device);
    const char *const node = udev_device_get_devnode(device);
    if (!kind || !node)
        return std::nullopt;
    Modem modem;
    modem.kind = *kind;
    modem.device = node;
    modem.name = nameOf(device);
    modem.user = programsWith(modem.device);
    if (access(node, R_OK | W_OK) != 0)
        modem.state = Modem::State::Denied;
    else if (!modem.user.empty())
        modem.state = Modem::State::InUse;
    return modem;
}

} // namespace

std::vector<Modem> listModems()
{
    std::vector<Modem> modems;
    const Udev udev(udev_new());
    if (!udev)
        return modems;
    const Enumeration found(udev_enumerate_new(udev.get()));
    for (const char *subsystem : Subsystems)
        udev_enumerate_add_match_subsystem(found.get(), subsystem);
    udev_enumerate_scan_devices(found.get());
    udev_list_entry *entry = nullptr;
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(found.get()))
    {
        const Device device(
            udev_device_new_from_syspath(udev.get(), udev_list_entry_get_name(entry)));
        if (auto modem = device ? modemOf(device.get()) : std::nullopt)
            modems.push_back(std::move(*modem));
    }
    std::sort(modems.begin(), modems.end(),
              [](const Modem &a, const Modem &b) { return a.device < b.device; });
    return modems;
}

ModemMonitor::ModemMonitor(Publish publish)
    : m_publish(std::move(publish))
    , m_stop(eventfd(0, EFD_CLOEXEC))
    , m_thread(&ModemMonitor::run, this)
{
}

ModemMonitor::~ModemMonitor()
{
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(m_stop, &one, sizeof one);
    m_thread.join();
    close(m_stop);
}

void ModemMonitor::run()
{
    const Udev udev(udev_new());
    const Monitor monitor(udev ? udev_monitor_new_from_netlink(udev.get(), "udev") : nullptr);
    if (monitor) {
        for (const char *subsystem : Subsystems)
            udev_monitor_filter_add_match_subsystem_devtype(monitor.get(), subsystem, nullptr);
        udev_monitor_enable_receiving(monitor.get());
    }
    m_publish(listModems()); // once nothing can be missed
    pollfd events[] = {{m_stop, POLLIN, 0},
                       {monitor ? udev_monitor_get_fd(monitor.get()) : -1, POLLIN, 0}};
    while (true) {
        poll(events, 2, -1);
        if (events[0].revents)
            return;
        if (!events[1].revents)
            continue; // a signal
        const Device device(udev_monitor_receive_device(monitor.get()));
        if (device) // of one that goes nobody knows any more what it was
            m_publish(listModems());
    }
}
