#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

/// The few measures and colours every window shares. Colours are functions of the palette in use,
/// so a window that asks while painting follows light and dark by itself.
namespace tembra::theme {

inline constexpr int gridUnit = 4;
inline constexpr int relatedSpacing = 8;
inline constexpr int groupSpacing = 16;
inline constexpr int margin = 12;
inline constexpr int wideMargin = 16;
inline constexpr int cornerRadius = 6;
inline constexpr int popoverRadius = 8;
/// Lowest contrast of text against what it stands on.
inline constexpr double readableContrast = 4.5;

/// Contrast of two colours from 1 (equal) to 21 (black and white), by relative luminance.
double contrast(const QColor &first, const QColor &second);
/// @p part of @p second mixed into @p first (0 … 1).
QColor mixed(const QColor &first, const QColor &second, double part);
bool isDark(const QPalette &palette);

/// Dimmer than the text on @p background (Base, Window, Button …), never below `readableContrast`.
QColor secondaryText(const QPalette &palette, QPalette::ColorRole background = QPalette::Base);
/// The same on a selected row.
QColor secondaryHighlightedText(const QPalette &palette);
/// A line that parts two areas.
QColor hairline(const QPalette &palette);
/// The fill of what the pointer is over, drawn upon @p background.
QColor hoverFill(const QPalette &palette, QPalette::ColorRole background = QPalette::Base);

QFont titleFont(const QFont &font); ///< 1.3 times as large, semibold.
QFont semiboldFont(const QFont &font);
QFont mediumFont(const QFont &font);
QFont secondaryFont(const QFont &font); ///< 0.9 times as large.

/// Whether the desktop asks to leave animations out.
bool prefersReducedMotion();

} // namespace tembra::theme
