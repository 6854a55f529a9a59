#pragma once

#include <QString>

namespace nubo {

/// The answer of the safety gate: allowed, or denied with a short Spanish reason for the user.
class Verdict
{
public:
    [[nodiscard]] static Verdict allowed() { return Verdict(QString()); }
    [[nodiscard]] static Verdict denied(const QString& reason) { return Verdict(reason); }

    [[nodiscard]] bool isAllowed() const { return m_reason.isNull(); }
    /// Empty for an allowed verdict.
    [[nodiscard]] const QString& reason() const { return m_reason; }

    friend bool operator==(const Verdict& a, const Verdict& b) { return a.m_reason == b.m_reason && a.isAllowed() == b.isAllowed(); }

private:
    explicit Verdict(QString reason) : m_reason(std::move(reason)) {}
    QString m_reason; // null exactly when allowed
};

} // namespace nubo
