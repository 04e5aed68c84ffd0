// Finding the entries of an HTTP Archive file without parsing them whole:
// the file's outer structure is checked, each entry's place and start time
// noted, so that entries can be read and decoded one at a time, in the
// order they started, and a fault in one stays with that one.
#ifndef ZUVO_TOOL_HARARCHIVE_H
#define ZUVO_TOOL_HARARCHIVE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zuvocli {

/// Where one entry lies in the file.
struct EntrySpan {
    std::size_t number = 0; ///< 1-based, in file order
    std::size_t begin = 0;  ///< first byte of the entry's JSON value
    std::size_t end = 0;    ///< one past its last byte
    /// The entry's "startedDateTime" as written; empty when it is missing or
    /// not a string.
    std::string startedDateTime;
};

/// A HAR file's text and the places of its entries. The text is owned.
class HarArchive {
public:
    /// Scans `text`; `name` names the file in messages. Throws
    /// RejectedError, naming what is wrong, for an empty file, a file in
    /// UTF-16 or UTF-32, text that is not JSON where the archive's outline
    /// is, a file without "log.entries", and data after the archive (a
    /// second archive included). A file that stops inside an entry (a writer
    /// killed mid-write) keeps the entries before it, with a warning; one
    /// that lacks only its closing brackets (a writer still appending) is
    /// read whole, with a note.
    HarArchive(std::string text, std::string name);

    const std::string& name() const { return fileName; }
    /// The entries in file order.
    const std::vector<EntrySpan>& entries() const { return spans; }
    /// The JSON text of `span`.
    std::string_view text(const EntrySpan& span) const {
        return std::string_view(content).substr(span.begin, span.end - span.begin);
    }
    /// How the file ends when it is not whole; empty when it is.
    const std::string& warning() const { return endNote; }

    /// Indexes into entries() sorted by start time, stable for equal times;
    /// an entry without a readable time keeps the place after the entry
    /// before it in the file.
    std::vector<std::size_t> sessionOrder() const;

private:
    /// The "startedDateTime" of the entry at `begin`, or empty.
    std::string startTime(std::size_t begin) const;

    std::string content;
    std::string fileName;
    std::vector<EntrySpan> spans;
    std::string endNote;
};

/// `when` (ISO 8601 with a zone, e.g. "2026-11-23T14:51:46.279554+00:00")
/// as microseconds since 1970 UTC; false when it is not such a time.
bool parseIsoTime(std::string_view when, std::int64_t& micros);

/// `json` with every lone UTF-16 surrogate escape ("\udce9", written by
/// tools for bytes they could not decode) replaced by "\ufffd", so that a
/// strict JSON reader accepts it. Paired surrogates are kept.
std::string mendSurrogates(std::string_view json);

} // namespace zuvocli

#endif
