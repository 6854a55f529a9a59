#include "core/safety/SafetyRules.h"

#include "core/files/HostSystem.h"

#include <initializer_list>

namespace nubo {

namespace {

using Base = SafetyRules::Base;
using Place = SafetyRules::Place;
using Tree = SafetyRules::Tree;

QList<Place> placesOf(Base base, std::initializer_list<const char*> paths)
{
    QList<Place> out;
    for (const char* path : paths)
        out.append({base, QString::fromUtf8(path)});
    return out;
}

QList<Tree> treesOf(Base base, std::initializer_list<const char*> paths)
{
    QList<Tree> out;
    for (const Place& place : placesOf(base, paths))
        out.append({place, false, false, {}});
    return out;
}

} // namespace

SafetyRules SafetyRules::forMac()
{
    SafetyRules rules;
    rules.roots = placesOf(Base::Root, {"/", "/Applications", "/Users", "/private", "/private/var", "/private/tmp",
                                      "/opt", "/opt/homebrew", "/System/Applications"});
    rules.roots << placesOf(Base::Library, {"", "/Application Support", "/Caches", "/Preferences", "/LaunchAgents",
                                          "/LaunchDaemons", "/Logs", "/PrivilegedHelperTools", "/Frameworks",
                                          "/Extensions"});
    rules.roots << placesOf(Base::Home, {"", "/Library", "/Desktop", "/Documents", "/Downloads", "/Pictures", "/Movies",
                                       "/Music", "/Public", "/Applications", "/.Trash", "/dev"});
    // Containers of removable things: their items may go, the containers themselves never.
    rules.roots << placesOf(Base::Home, {"/Library/Developer/Xcode",
                                       "/Library/Developer/CoreSimulator",
                                       "/Library/Developer/CoreSimulator/Devices",
                                       "/Library/Developer/CoreSimulator/Caches",
                                       "/Library/Developer/Xcode/DerivedData",
                                       "/Library/Developer/Xcode/Archives",
                                       "/Library/Developer/Xcode/iOS DeviceSupport",
                                       "/Library/Developer/Xcode/watchOS DeviceSupport",
                                       "/Library/Developer/Xcode/tvOS DeviceSupport",
                                       "/Library/Developer/Xcode/visionOS DeviceSupport",
                                       "/Library/Developer/Xcode/macOS DeviceSupport",
                                       "/Library/Application Support/MobileSync",
                                       "/Library/Application Support/MobileSync/Backup",
                                       "/Library/Preferences/ByHost",
                                       "/Library/Containers/com.apple.mail/Data/Library/Mail Downloads"});
    rules.listedRoots = placesOf(Base::Home, {"/Library"});

    rules.trees = treesOf(Base::Root, {"/System", "/bin", "/sbin", "/usr", "/etc", "/dev", "/cores", "/private/etc",
                                     "/private/var/db", "/private/var/root", "/Volumes"});
    rules.trees << treesOf(Base::Library, {"/Apple", "/Keychains", "/Security"});
    rules.trees << treesOf(Base::Home, {"/Library/Keychains", "/Library/Mobile Documents", "/Library/CloudStorage",
                                      "/Library/Mail", "/Library/Messages", "/Library/Accounts",
                                      "/Library/Cookies/Cookies.binarycookies",
                                      "/Library/Application Support/com.apple.TCC",
                                      "/Library/Application Support/AddressBook", "/Library/Calendars",
                                      "/Library/Containers/com.apple.Notes"});
    rules.sharedTemporaries = {QStringLiteral("/private/tmp")};
    rules.insideBundle = QStringLiteral(".photoslibrary/");
    rules.systemApplications = QStringLiteral("/System/Applications");
    // The data volume is reached through its firmlinks; /home is the automounter's.
    rules.unscanned = {QStringLiteral("/System/Volumes"), QStringLiteral("/Volumes"), QStringLiteral("/dev"),
                       QStringLiteral("/net"), QStringLiteral("/home"), QStringLiteral("/private/var/vm/sleepimage")};
    return rules;
}

SafetyRules SafetyRules::forLinux()
{
    SafetyRules rules;
    rules.system = HostSystem::Linux;
    rules.roots = placesOf(Base::Root, {"/", "/home", "/tmp", "/var", "/var/tmp", "/var/crash"});
    // The home itself and the XDG folders that hold what programs and the desktop keep: what is
    // inside may go item by item, the folders never.
    rules.roots << placesOf(Base::Home, {"", "/bin", "/.cache", "/.config", "/.config/autostart", "/.config/systemd",
                                       "/.config/systemd/user", "/.local", "/.local/bin", "/.local/lib",
                                       "/.local/share", "/.local/share/applications", "/.local/share/icons",
                                       "/.local/share/fonts", "/.local/share/Trash", "/.local/share/Trash/files",
                                       "/.local/share/Trash/info", "/.local/state", "/.var", "/.var/app", "/snap"});
    // The user folders under their usual names, and under the names the user's desktop gave them.
    rules.roots << placesOf(Base::Home, {"/Desktop", "/Documents", "/Downloads", "/Music", "/Pictures", "/Public",
                                         "/Templates", "/Videos"});
    rules.userDirectories = true;

    // The file-system hierarchy: the system's programs and settings, the kernel's views, runtime
    // state, services' data, packages of every kind, and the places where volumes appear.
    rules.trees = treesOf(Base::Root, {"/bin", "/boot", "/cdrom", "/dev", "/efi", "/etc", "/gnu", "/lib", "/lib32",
                                     "/lib64", "/libx32", "/lost+found", "/media", "/mnt", "/nix", "/opt", "/proc",
                                     "/run", "/sbin", "/snap", "/srv", "/sys", "/usr"});
    rules.trees.append({{Base::Root, QStringLiteral("/var")},
                        false,
                        false,
                        {QStringLiteral("/var/tmp"), QStringLiteral("/var/crash")}});
    rules.trees.append({{Base::Root, QStringLiteral("/home")}, false, true, {}});
    rules.trees.append({{Base::Root, QStringLiteral("/root")}, false, true, {}});
    // What the system keeps in the shared temporary folders: display sockets and locks, and the
    // private temporary folders systemd gives its services.
    rules.trees << treesOf(Base::Root, {"/tmp/.ICE-unix", "/tmp/.font-unix", "/tmp/.Test-unix", "/tmp/snap-private-tmp"});
    for (const char* prefix : {"/tmp/.X", "/tmp/systemd-private-", "/var/tmp/systemd-private-"})
        rules.trees.append({{Base::Root, QString::fromUtf8(prefix)}, true, false, {}});
    // Secrets, mail, accounts, photo libraries and installed runtimes of the user.
    rules.trees << treesOf(Base::Home, {"/.ssh", "/.gnupg", "/.pki", "/.password-store", "/.local/share/keyrings",
                                      "/.thunderbird", "/.local/share/evolution", "/.config/evolution",
                                      "/.config/goa-1.0", "/.local/share/shotwell", "/.local/share/flatpak",
                                      "/.local/share/containers"});

    rules.sharedTemporaries = {QStringLiteral("/tmp"), QStringLiteral("/var/tmp")};
    rules.crashReports = QStringLiteral("/var/crash");
    rules.onlyOwnItemsOutsideHomes = true;
    rules.otherVolumes = true;
    // The kernel's and the run time's own file systems, also where a container puts them on
    // the root's device.
    rules.unscanned = {QStringLiteral("/proc"), QStringLiteral("/sys"), QStringLiteral("/dev"), QStringLiteral("/run")};
    return rules;
}

SafetyRules SafetyRules::forHost()
{
    return runningSystem() == HostSystem::Mac ? forMac() : forLinux();
}

} // namespace nubo
