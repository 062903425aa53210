#pragma once

#include <QList>
#include <QString>

#include <functional>
#include <memory>

class QWidget;

namespace tembra {

class ManagedObject;
class ManagedObjectContext;

/// The words of a deletion: the question before it, and the alert when it fails.
struct DeletionTexts
{
    QString question;
    QString details; ///< Stands below the question and says what will be removed.
    QString failure;
};

/// Asks in a sheet on the window of @p view whether @p records are to be deleted, and deletes those
/// of them that still exist in one step of undo.
///
/// @p completed is called when they are deleted and all live results know it. When the store fails
/// nothing is deleted, a second sheet says why, and the log has a line. Nothing happens once
/// @p view is gone.
void confirmDeletion(QWidget &view, ManagedObjectContext &context,
                     const QList<std::shared_ptr<ManagedObject>> &records,
                     const DeletionTexts &texts, std::function<void()> completed = {});

} // namespace tembra
