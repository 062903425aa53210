#include "Bindings/RecordDeletion.h"

#include "Foundation/Logging.h"
#include "Store/Objects/ManagedObject.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Toolkit/Alert.h"
#include "Toolkit/WaitCursor.h"

#include <QCoreApplication>
#include <QPointer>
#include <QWidget>

namespace tembra {

namespace {

void showFailure(QWidget &view, const QString &message, const Error &error)
{
    qCWarning(windowLog, "Could not delete records: %s", qUtf8Printable(error.description()));
    Alert::beginSheet({.messageText = message,
                       .informativeText = error.description(),
                       .buttons = {QCoreApplication::translate("RecordDeletion", "OK",
                                                               "Button that closes an alert")}},
                      view.window(), [](int) {});
}

Result<void> deleteRecords(ManagedObjectContext &context,
                           QList<std::shared_ptr<ManagedObject>> records)
{
    // Some may have been deleted elsewhere while the question stood there.
    const WaitCursor waiting;
    records.removeIf([](const auto &record) { return record->isDeleted(); });
    auto deleted = context.deleteObjects(records);
    if (deleted)
        context.processPendingChanges();
    return deleted;
}

} // namespace

void confirmDeletion(QWidget &view, ManagedObjectContext &context,
                     const QList<std::shared_ptr<ManagedObject>> &records,
                     const DeletionTexts &texts, std::function<void()> completed)
{
    const AlertContents contents{
        .messageText = texts.question,
        .informativeText = texts.details,
        .buttons = {QCoreApplication::translate("RecordDeletion", "Delete", "Button that deletes"),
                    QCoreApplication::translate("RecordDeletion", "Cancel",
                                                "Button that leaves things as they are")},
        .firstButtonDestroys = true};
    Alert::beginSheet(contents, view.window(),
                      [guard = QPointer(&view), &context, records, failure = texts.failure,
                       completed = std::move(completed)](int button) {
                          if (!guard || button != 0)
                              return;
                          const auto deleted = deleteRecords(context, records);
                          if (!deleted)
                              showFailure(*guard, failure, deleted.error());
                          else if (guard && completed)
                              completed();
                      });
}

} // namespace tembra
