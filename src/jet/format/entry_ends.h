#pragma once

#include "jet/format/index_page.h"

#include <array>

namespace jet
{

/// A copy of an index page's bitmap in words, so that part of it can be shifted.
class EntryEnds
{
public:
    explicit EntryEnds(PageBytes page)
    {
        for (std::size_t i = 0; i < kWholeWords; ++i)
            m_words[i] = readLittleEndian<std::uint64_t>(page, offsetOf(i));
        m_words[kWholeWords] =
            readLittleEndian<std::uint64_t, kLastWord>(page, offsetOf(kWholeWords));
    }
    void store(MutablePageBytes page) const
    {
        for (std::size_t i = 0; i < kWholeWords; ++i)
            writeLittleEndian<8>(page, offsetOf(i), m_words[i]);
        writeLittleEndian<kLastWord>(page, offsetOf(kWholeWords), m_words[kWholeWords]);
    }

    void set(std::size_t bit) { m_words[bit / 64] |= std::uint64_t{1} << bit % 64; }
    /// Removes bits and shifts the following ones down.
    void remove(std::size_t at, std::size_t count)
    {
        const Words old = m_words;
        const auto word = [&](std::size_t i) { return i < old.size() ? old[i] : 0; };
        for (std::size_t i = at / 64; i < m_words.size(); ++i) {
            const std::size_t from = i + count / 64;
            const std::uint64_t carried = count % 64 == 0 ? 0 : word(from + 1) << (64 - count % 64);
            const std::uint64_t kept = below(at, i);
            m_words[i] = (old[i] & kept) | ((word(from) >> count % 64 | carried) & ~kept);
        }
    }
    /// Inserts zeros and shifts the following bits up.
    void insert(std::size_t at, std::size_t count)
    {
        const Words old = m_words;
        const auto movedWord = [&](std::size_t i) {
            return i < old.size() ? old[i] & ~below(at, i) : 0;
        };
        for (std::size_t i = at / 64; i < m_words.size(); ++i) {
            const std::size_t from = i - count / 64; // before the first word: outside as well
            const std::uint64_t carried =
                count % 64 == 0 ? 0 : movedWord(from - 1) >> (64 - count % 64);
            m_words[i] = (old[i] & below(at, i)) | movedWord(from) << count % 64 | carried;
        }
    }

private:
    static constexpr std::size_t kWholeWords = kEndsSize / 8;
    static constexpr std::size_t kLastWord = kEndsSize % 8;
    using Words = std::array<std::uint64_t, kWholeWords + 1>;

    static std::size_t offsetOf(std::size_t word) { return kEndsOffset + 8 * word; }
    /// The bits of a word before a position.
    static std::uint64_t below(std::size_t place, std::size_t word)
    {
        if (place <= 64 * word)
            return 0;
        return place >= 64 * word + 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << place % 64) - 1;
    }

    Words m_words;
};

} // namespace jet
