#pragma once

#include <QList>
#include <QStringView>

#include <optional>

/// The cases of an enumeration that counts from 0: those that `details` has something for, in
/// order. As long as `details` is one switch without a default, the compiler asks for every case.
template <typename Details, typename Enum>
QList<Enum> casesWith(std::optional<Details> (*details)(Enum))
{
    QList<Enum> cases;
    while (details(Enum(cases.size())))
        cases.append(Enum(cases.size()));
    return cases;
}

/// The case whose details have exactly this `rawValue`, or nothing.
template <typename Details, typename Enum>
std::optional<Enum> caseWithRawValue(std::optional<Details> (*details)(Enum), QStringView text)
{
    for (const Enum each : casesWith(details)) {
        if (const auto found = details(each); found && found->rawValue == text)
            return each;
    }
    return std::nullopt;
}
