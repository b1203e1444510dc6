/// @file
/// One SRTP crypto line of a media line (`a=crypto`, RFC 4568): tag, suite and key parameters.
///
/// A QOVA_Crypto holds its key entries by value. The order of the data members and of the virtual
/// functions is ABI.
///
/// Operations that allocate throw std::bad_alloc when memory runs out, and leak nothing. Nothing
/// else throws. Copies and texts allocate; a comparison does not. Every operation takes time linear
/// in the number of keys.

#ifndef QOVA_CRYPTO_H
#define QOVA_CRYPTO_H

#include <list>
#include <string>

#include "netconf/sdp.h"
#include "qova/export.h"

/// One key parameter of a crypto line (`inline:`, RFC 4568, section 6.1): lifetime, master key
/// identifier and key material. A plain record, copied as one block of bytes. It has no default
/// member initialisers; `= {}` sets all fields to zero.
struct QOVA_CryptoKey {
    /// Lifetime of the master key in packets.
    unsigned int lifetime;

    /// Length of the master key identifier in bytes.
    unsigned char mkiSize;

    /// The master key identifier. Comparison and log text use all eight bytes, whatever the
    /// #mkiSize, so set the unused bytes to zero.
    unsigned char mki[8];

    /// Master key and salt, laid out by the code that fills the record; 46 bytes hold the keys of
    /// every registered suite. The library copies them with the record, but never reads, compares
    /// or prints them: **no log text shows key material, and two lines that differ only here are
    /// equal.**
    unsigned char key[46];
};

/// One SRTP crypto line (`a=crypto`, RFC 4568).
///
/// The library copies and clones crypto lines but never assigns them. To replace a crypto line,
/// delete it and clone another.
class QOVA_API QOVA_Crypto {
public:
    /// The tag, the number at the start of the line.
    unsigned int tag = 0;

    /// The crypto suite.
    g_crypto_suite algo = static_cast<g_crypto_suite>(0);

    /// The key parameters in the order of the line.
    std::list<QOVA_CryptoKey> keys;

    /// Makes a line with the default member initialisers. Does not allocate.
    QOVA_Crypto();

    /// Makes a copy with its own key entries: one allocation for each.
    /// @param other the source
    QOVA_Crypto(const QOVA_Crypto& other);

    /// Frees the key entries.
    virtual ~QOVA_Crypto();

    /// Makes a new copy with the copy constructor. The new object is one more allocation.
    /// @return the copy, which the caller owns
    virtual QOVA_Crypto* clone() const;

    /// Compares two crypto lines. The comparison is deliberately partial:
    /// - `other` must be exactly a QOVA_Crypto, not an object of a derived class;
    /// - lifetime, MKI length and all eight MKI bytes of the key entries are compared pair by pair
    ///   **until the shorter list ends**, so an empty list equals any list;
    /// - **key material is never compared**, so that lines can be compared where the keys are
    ///   unknown;
    /// - tag and suite must be equal.
    /// @param other the crypto line to compare with
    /// @return true if no compared member differs
    bool operator==(const QOVA_Crypto& other) const;

    /// Returns the log text: one line with tag, suite and key entries. **It contains no key
    /// material**, because logs go where keys must not. The MKI bytes are decimal numbers without
    /// separators.
    /// @return the text, which ends with a newline
    operator const std::string() const;
};

#endif
