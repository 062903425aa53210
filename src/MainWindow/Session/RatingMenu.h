#pragma once

#include <QObject>

#include <memory>

namespace tembra {

class DefaultsManager;
class EmojiComboBox;
class PropertyObservation;
class SentimentScale;
class Session;

/// Binds a pop-up menu to one rating of a meeting. Its items are the values of the scale, in the
/// scale's order, so that an item's index is the value.
///
/// A value off the scale selects no item, and stays as it is until the user picks one.
class RatingMenu final : public QObject
{
    Q_OBJECT

public:
    /// @p property is the rating's property of Session. The menu belongs to @p popup.
    RatingMenu(EmojiComboBox *popup, const SentimentScale &scale, const QByteArray &property,
               const DefaultsManager &defaults);
    ~RatingMenu() override;

    void setSession(std::shared_ptr<Session> session);
    /// Reads the emoji again; the selected item stays selected.
    void refresh();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void showRating();
    void storeRating(int index);
    void describe();

    EmojiComboBox *m_popup;
    const SentimentScale &m_scale;
    QByteArray m_property;
    const DefaultsManager &m_defaults;
    std::shared_ptr<Session> m_session;
    std::unique_ptr<PropertyObservation> m_observation;
};

} // namespace tembra
