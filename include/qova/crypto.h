/// @file
/// One SRTP crypto line of a media line (`a=crypto`, RFC 4568): tag, suite and key parameters.
///
/// A QOVA_Crypto holds its key entries by value. The order of the data members and of the virtual
/// functions is ABI.
///
/// Whatever allocates throws std::bad_alloc when memory runs out, and leaks nothing; nothing else
/// throws. Copies and texts allocate, comparing does not; everything is linear in what it looks at.

#ifndef QOVA_CRYPTO_H
#define QOVA_CRYPTO_H

#include <list>
#include <string>

#include "netconf/sdp.h"
#include "qova/export.h"

/// One key parameter of a crypto line (`inline:`, RFC 4568, section 6.1): lifetime, master key
/// identifier and key material. A plain record, copied as one block of bytes. It leaves its fields
/// to whoever fills it; `= {}` makes them all zero.
struct QOVA_CryptoKey {
    /// Lifetime of the master key in packets.
    unsigned int lifetime;

    /// Length of the master key identifier in bytes.
    unsigned char mkiSize;

    /// The master key identifier. Comparison and log text take all eight bytes whatever #mkiSize
    /// says, so the unused ones have to be zero to compare as intended.
    unsigned char mki[8];

    /// Master key and salt, as whoever fills the record places them; 46 bytes hold the longest of
    /// the registered suites. Copied with the record, but never read, compared or printed by this
    /// library: **no log text shows key material, and two lines that differ only here are equal.**
    unsigned char key[46];
};

/// One SRTP crypto line (`a=crypto`, RFC 4568).
///
/// It is copied and cloned, but never assigned: the library declares no assignment and uses none.
/// Owners replace a crypto line by deleting it and cloning another.
class QOVA_API QOVA_Crypto {
public:
    /// The tag that opens the line.
    unsigned int tag = 0;

    /// The crypto suite.
    g_crypto_suite algo = static_cast<g_crypto_suite>(0);

    /// The key parameters in the order of the line.
    std::list<QOVA_CryptoKey> keys;

    /// A line with the defaults that stand beside the members. Allocates nothing.
    QOVA_Crypto();

    /// A copy with key entries of its own: one allocation for each.
    /// @param other the source
    QOVA_Crypto(const QOVA_Crypto& other);

    /// Frees the key entries.
    virtual ~QOVA_Crypto();

    /// A new copy of this line, made by the copy constructor: one allocation more than that makes.
    /// @return an object that the caller owns
    virtual QOVA_Crypto* clone() const;

    /// Whether two crypto lines say the same, by rules that are partial on purpose:
    /// - the other must be exactly a QOVA_Crypto, not of a class derived from it;
    /// - lifetime, MKI length and all eight MKI bytes of the key entries are compared side by side
    ///   **until the shorter list ends**; a list equals every longer one that starts with it, and
    ///   an empty list equals any;
    /// - **key material is never compared**: a line may be compared where its keys are not known;
    /// - tag and suite must agree.
    /// @param other the crypto line to compare with
    /// @return whether no compared member differs
    bool operator==(const QOVA_Crypto& other) const;

    /// The log text: one line with tag, suite and key entries. **It holds no key material**, as
    /// logs go where keys must not. The MKI bytes stand as decimal numbers with nothing between
    /// them.
    /// @return the text, which ends with a newline
    operator const std::string() const;
};

#endif
