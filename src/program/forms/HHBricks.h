#pragma once

#include "core/Text.h"

#include <QIcon>
#include <QString>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

class FormBehaviour;
class QGridLayout;
class QWidget;

/// The bricks of the main screen: a button for each record of the Links table, in their order. Each has the
/// name of its family and its number from 1, as "cmdHHHSIDStd_2", and its click is wired to the form.
class HHBricks {
public:
    /// What a brick shows.
    struct Face {
        QIcon Picture;
        Text State;
        bool Live = false; ///< a click does something
    };

    HHBricks(FormBehaviour& form, QGridLayout& grid) : form_(form), grid_(grid) {}

    /// Draws a family in the place of the one that stands there, behind `before` in the tab order.
    /// RunTimeFailure as LinkIDs.
    void Draw(const QString& family, QWidget& before, const std::function<Face(std::size_t index)>& faceOf);

    bool IsEmpty() const { return ids_.empty(); }

    /// The handheld of a brick.
    const std::string& ID(int index) const { return ids_.at(static_cast<std::size_t>(index) - 1); }

    /// The brick of a handheld that had `index` before the last drawing; 0 when it has gone.
    int IndexOf(const std::string& id, int index) const;

private:
    void TakeAway();

    FormBehaviour& form_;
    QGridLayout& grid_;
    std::vector<std::string> ids_;
};

/// An icon that looks the same on a button that cannot be pressed.
QIcon StateIcon(std::string_view name);
