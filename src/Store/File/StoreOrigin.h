#pragma once

namespace tembra {

/// Where the content of a store that was opened comes from.
enum class StoreOrigin {
    Found,
    Made, ///< There was none, so an empty one was made.
    MadeForAnEmptyFile ///< There was a file, but nothing in it.
};

} // namespace tembra
