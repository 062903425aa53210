#pragma once

#include <QLabel>

class QTextLayout;

namespace tembra {

/// A label of plain text, emoji in colour, that is exactly as tall as its text when that is wrapped
/// at the label's width. Without wrapping it is one line.
class DynamicTextField final : public QLabel
{
    Q_OBJECT

public:
    explicit DynamicTextField(QWidget *parent = nullptr);
    explicit DynamicTextField(const QString &text, QWidget *parent = nullptr);

    bool wraps() const { return wordWrap(); }
    /// Wraps unless told otherwise.
    void setWraps(bool wraps);
    /// Dimmer text, still readable in every theme.
    void setSecondary(bool secondary);

    /// The size of the text, wrapped at the width that the label has.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    /// Breaks the text into lines; returns how much room these take.
    QSizeF layOut(QTextLayout &layout, double width) const;
    QSizeF wrappedSize(double width) const;
    int horizontalMargins() const;
    int verticalMargins() const;

    bool m_secondary = false;
};

} // namespace tembra
