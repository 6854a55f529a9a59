#pragma once

#include "core/files/HostSystem.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace nubo {

/// What the safety gate protects on one operating system, as data: `forMac()` and `forLinux()`
/// are both built and tested on every machine, and `forHost()` picks the one of the system we
/// run on. The gate (`Safety`) reads the rules; the places they are anchored to (the home, the
/// system Library, the temporary folder) come from `SystemRoots`, so tests point both sets at a
/// temporary tree.
struct SafetyRules
{
    /// Where a rule's path starts: the file system's root, each protected home folder (the one
    /// the program works on and the user's real one), or the system-wide Library folder.
    enum class Base { Root, Home, Library };

    /// One place: `path` is absolute for `Root`, and "" or "/relative" for the other bases.
    struct Place
    {
        Base base = Base::Root;
        QString path;
    };

    /// A place protected together with everything below it.
    struct Tree
    {
        Place place;
        /// Also every sibling whose name begins with the place's last name ("/tmp/systemd-private-"
        /// covers "/tmp/systemd-private-abc" and all below it).
        bool namePrefix = false;
        /// The user's own homes below the tree stay the user's ("/home" covers every other user's).
        bool exceptHomes = false;
        /// Absolute places below the tree that are judged by the other rules ("/var/tmp" in "/var").
        QStringList except;
    };

    /// The system these rules are for.
    HostSystem system = HostSystem::Mac;
    /// Protected as themselves only: their items may go, they never do.
    QList<Place> roots;
    /// Folders each of whose direct entries, as listed on first use, is a protected root.
    QList<Place> listedRoots;
    /// The home's own XDG user folders (their names are localised: "Descargas") are roots too.
    bool userDirectories = false;
    QList<Tree> trees;
    /// Shared temporary folders where every user leaves files: the cleanup offers only the user's
    /// own entries there. They are protected roots of their own.
    QStringList sharedTemporaries;
    /// The system's folder of crash reports, where every user's programs leave theirs and only
    /// the user's own are offered; none where the system keeps them in the home.
    QString crashReports;
    /// Outside the homes, only items the user owns may be selected: anything else the user could
    /// not remove would go to the administrator, and it is not the user's to remove.
    bool onlyOwnItemsOutsideHomes = false;
    /// Every mount point but "/", the one holding a home and those holding the temporary folders
    /// is a protected tree: nothing on another volume is ever deletable.
    bool otherVolumes = false;
    /// A path containing this text is inside a bundle whose parts must never go one by one.
    QString insideBundle;
    /// Everything whose path begins with this text comes with the system.
    QString systemApplications;
    /// Exact paths the space map never enters or counts: the system's views of other volumes and
    /// of its own state, and files it rewrites itself.
    QStringList unscanned;

    [[nodiscard]] static SafetyRules forMac();
    [[nodiscard]] static SafetyRules forLinux();
    /// The rules of the system this program runs on, told at run time.
    [[nodiscard]] static SafetyRules forHost();
};

} // namespace nubo
