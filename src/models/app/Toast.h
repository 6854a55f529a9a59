#pragma once

#include <QUuid>

namespace nubo {

/// The short report of one deletion batch: what it freed and how many items it could not
/// delete. Every report is a new toast, even with the same figures: its id tells them apart, so
/// a timer started for an older toast never dismisses a newer one.
struct Toast
{
    QUuid id = QUuid::createUuid();
    qint64 freed = 0;
    qint64 failures = 0;

    friend bool operator==(const Toast&, const Toast&) = default;
};

} // namespace nubo
