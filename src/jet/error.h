#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace jet
{

/// Number of a 4096-byte page, counted from 0; its file offset is the number times 4096.
using PageNo = std::uint32_t;

/// The error numbers of DAO that the engine raises; other programs and the operators' manuals know
/// failures by these numbers.
enum class ErrorCode : int {
    InvalidArgument = 3001,
    ObjectExists = 3010,
    NoCurrentRecord = 3021,
    DuplicateKey = 3022,
    FileNotFound = 3024,
    DiskFull = 3026,
    PasswordNeeded = 3031,
    NoTransaction = 3034,
    DiskError = 3043,
    RecordTooLarge = 3047,
    Damaged = 3049,
    ReadOnly = 3051, ///< the system denies the access, or a write to a file opened for reading
    NullNotAllowed = 3058,
    NoSuchTable = 3078,
    InvalidName = 3125,
    ValueTooLong = 3163,
    RecordDeleted = 3167,
    TooManyColumns = 3190,
    FileExists = 3204,
    NotSupported = 3251,
    TableLocked = 3262,
    NoSuchItem = 3265, ///< no column or index of that name
    NotADatabase = 3343,
    InUse = 3356,
    DuplicateItem = 3367,  ///< two columns or indexes of one name in a new table
    TypeConversion = 3421, ///< also a value that the column's type cannot hold
};

/// What every failure of the engine throws. The file is then as it was before the failed statement.
class Error : public std::runtime_error
{
public:
    Error(ErrorCode code, const std::string &description, PageNo page = 0)
        : std::runtime_error(description), m_code(code), m_page(page)
    {
    }

    ErrorCode code() const { return m_code; }
    /// The DAO error number, as it is shown to operators.
    int number() const { return static_cast<int>(m_code); }
    /// The page at which damage was found; 0 when no page is to blame.
    PageNo page() const { return m_page; }

private:
    ErrorCode m_code;
    PageNo m_page;
};

} // namespace jet
