#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <string_view>

namespace tembra {

/// How one character folds, if it can be told without looking at its whole text.
struct FoldedCharacter
{
    enum class Kind : uint8_t {
        Fixed, ///< The same wherever it stands.
        Mark, ///< The same unless it joins what stands before it.
        Complex, ///< To be folded with its text, by ICU.
    };
    static constexpr size_t longest = 6;

    std::array<char, longest> bytes{}; ///< UTF-8; nothing if Complex.
    uint8_t length = 0;
    Kind kind = Kind::Complex;

    std::string_view text() const { return {bytes.data(), length}; }
};

/// The foldings of single characters, a page of them asked of ICU when the first is needed: those
/// of all of Unicode would take a second. Usable from several threads.
class FoldingTable
{
public:
    FoldingTable() = default;
    ~FoldingTable();
    FoldingTable(const FoldingTable &) = delete;
    FoldingTable &operator=(const FoldingTable &) = delete;

    const FoldedCharacter &operator[](char32_t character)
    {
        const size_t index = character / pageSize;
        const Page *page = m_pages[index].load(std::memory_order_acquire);
        return (page ? *page : loadedPage(index))[character % pageSize];
    }

private:
    static constexpr size_t pageSize = 128;
    static constexpr size_t pageCount = 0x110000 / pageSize;
    using Page = std::array<FoldedCharacter, pageSize>;

    const Page &loadedPage(size_t index);

    std::array<std::atomic<const Page *>, pageCount> m_pages{};
};

} // namespace tembra
