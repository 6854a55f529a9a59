#pragma once

#include <QString>

namespace nubo {

/// The answer of the safety gate: allowed, or denied with a short Spanish reason for the user.
class Verdict
{
public:
    [[nodiscard]] static Verdict allowed() { return Verdict(true, QString()); }
    [[nodiscard]] static Verdict denied(const QString& reason) { return Verdict(false, reason); }

    [[nodiscard]] bool isAllowed() const { return m_allowed; }
    /// Empty for an allowed verdict.
    [[nodiscard]] const QString& reason() const { return m_reason; }

    friend bool operator==(const Verdict& a, const Verdict& b)
    {
        return a.m_allowed == b.m_allowed && a.m_reason == b.m_reason;
    }

private:
    Verdict(bool allowed, QString reason) : m_allowed(allowed), m_reason(std::move(reason)) {}

    bool m_allowed;
    QString m_reason;
};

} // namespace nubo
