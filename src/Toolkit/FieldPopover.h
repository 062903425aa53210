#pragma once

#include "Toolkit/Popover.h"

namespace tembra {

/// A popover beside a field that is being typed in: it never takes the keyboard, and lies in the
/// field's own window.
///
/// Closes on a click elsewhere and when the window is left; the field closes it on Escape and when
/// its editing ends.
class FieldPopover final : public Popover
{
    Q_OBJECT

public:
    /// @p field is what it belongs to, and owns it.
    explicit FieldPopover(QWidget *field);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    bool holdsTheField(const QObject *object) const;
    bool isOutside(const QWidget &widget) const;
};

} // namespace tembra
