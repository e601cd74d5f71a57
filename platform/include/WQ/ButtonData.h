// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QVector>

namespace WQ
{

/// One button of a multi-button cell: the id that a click reports, its text and its style (`EButtonType`).
struct ButtonData {
    ButtonData() = default;
    ButtonData(int buttonId, const QString& buttonText, int type) : id(buttonId), text(buttonText), buttonType(type) {}

    int id = -1;
    QString text;
    int buttonType = 1;

    bool operator==(const ButtonData& other) const
    {
        return id == other.id && buttonType == other.buttonType && text == other.text;
    }
    bool operator!=(const ButtonData& other) const { return !(*this == other); }
};

} // namespace WQ

Q_DECLARE_TYPEINFO(WQ::ButtonData, Q_MOVABLE_TYPE);
