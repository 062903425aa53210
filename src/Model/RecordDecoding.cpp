#include "Model/RecordDecoding.h"

#include "Foundation/Json/JsonDecoder.h"
#include "Foundation/Precondition.h"
#include "Model/TagMerger.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"

#include <QVariant>

Q_DECLARE_METATYPE(tembra::ManagedObjectContext *)
Q_DECLARE_METATYPE(std::shared_ptr<tembra::TagMerger>)

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

const QString contextKey = u"context"_s;
const QString tagsKey = u"tags"_s;

} // namespace

void setDecodingContext(JsonDecoder &decoder, ManagedObjectContext &context)
{
    decoder.userInfo().insert(contextKey, QVariant::fromValue(&context));
}

ManagedObjectContext &decodingContext(JsonDecoder &decoder, const char *entityName)
{
    auto *context = decoder.userInfo().value(contextKey).value<ManagedObjectContext *>();
    require(context && context->container().model().entityIndex(entityName) >= 0,
            "Failed to decode User");
    return *context;
}

TagMerger &decodingTagMerger(JsonDecoder &decoder, ManagedObjectContext &context)
{
    QVariant &kept = decoder.userInfo()[tagsKey];
    if (!kept.isValid())
        kept = QVariant::fromValue(std::make_shared<TagMerger>(context));
    return *kept.value<std::shared_ptr<TagMerger>>();
}

} // namespace tembra
