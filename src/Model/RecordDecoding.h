#pragma once

namespace tembra {

class JsonDecoder;
class ManagedObjectContext;
class TagMerger;

// What decoding the records of a backup shares: it is kept with the decoder.

/// Sets the context into which every record that @p decoder reads is inserted. It must outlive the
/// reading.
void setDecodingContext(JsonDecoder &decoder, ManagedObjectContext &context);
/// The context that was set. Stops the program when there is none with this entity.
ManagedObjectContext &decodingContext(JsonDecoder &decoder, const char *entityName);
/// Merges the tags of all meetings that @p decoder reads.
TagMerger &decodingTagMerger(JsonDecoder &decoder, ManagedObjectContext &context);

} // namespace tembra
