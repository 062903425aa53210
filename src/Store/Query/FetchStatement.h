#pragma once

#include "Foundation/Result.h"
#include "Store/Query/FetchRequest.h"
#include "Store/Schema/ObjectModel.h"
#include "Store/Schema/Value.h"

#include <QByteArray>

#include <vector>

namespace tembra {

/// A query as SQL. Every argument is bound, so requests that differ in nothing else share one text.
struct FetchStatement
{
    QByteArray sql;
    std::vector<Value> bindings;
};

/// The query for the keys of the records that answer @p request, one column, in its order; no key
/// comes twice. Fails when the request does not fit the model. Needs the search function
/// (SearchFunction.h) on the connection when it searches texts.
Result<FetchStatement> compileFetch(const ObjectModel &model, const FetchRequest &request);

} // namespace tembra
