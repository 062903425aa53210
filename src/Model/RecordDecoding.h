#pragma once

namespace tembra {

class JsonDecoder;
class ManagedObjectContext;

// How records are made of a backup. Whoever decodes says into which context they are inserted.

/// Hands over the context for every record that @p decoder reads. It must outlive the reading.
void setDecodingContext(JsonDecoder &decoder, ManagedObjectContext &context);

} // namespace tembra
