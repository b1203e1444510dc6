// Classes that the tests derive from those of the library and its companion.

#ifndef QOVA_TESTS_DERIVED_H
#define QOVA_TESTS_DERIVED_H

#include <cstddef>
#include <string>
#include <utility>

#include "allocations.h"
#include "qova/attributes.h"
#include "socket/address.h"

// Overrides clone(), so a copy has the same class.
template <class Base>
class Derived : public Base {
public:
    Derived* clone() const override { return new Derived(*this); }
};

// Overrides nothing, so a copy has the class of its base.
template <class Base>
class WithoutClone : public Base {};

// An attribute with its own text, and with the base's equality.
class OwnAttribute : public QOVA_MediaAttribute {
public:
    OwnAttribute* clone() const override { return new OwnAttribute(*this); }
    operator const std::string() const override { return text; }

    std::string text = "the text of a user's own attribute\n";
};

// A class with its own text. QOVA_Crypto's conversion is not virtual, so there is no `override`.
inline const std::string own_text = "\t\t => own text\n";

template <class Base>
class OwnText : public Base {
public:
    operator const std::string() const { return own_text; }
};

// An address with its own text.
class OwnAddress : public IPAddress {
public:
    explicit OwnAddress(std::string written) : text(std::move(written)) {}
    OwnAddress* Copy() const override { return new OwnAddress(*this); }
    std::string ToString() const override { return text; }

    std::string text;
};

// ---- Classes that log the library's calls in a journal ----

// The calls to the classes below, one entry per line. Writing an entry does not allocate.
class Journal {
public:
    Journal() { entries.reserve(4096); }

    void write(const char* action, const std::string& who, const char* more = "") {
        if (counting) {
            const std::size_t allocated = allocations::made() - made_before;
            if (allocated != 0) {
                entries += std::to_string(allocated);
                entries += " allocated\n";
            }
        }
        entries += action;
        entries += who;
        entries += more;
        entries += '\n';
        made_before = allocations::made();
    }

    // From now on, an entry also has the number of allocations since the previous one.
    void count_allocations() {
        counting = true;
        made_before = allocations::made();
    }

    void clear() { entries.clear(); }

    const std::string& text() const { return entries; }

private:
    std::string entries;
    bool counting = false;
    std::size_t made_before = 0;
};

// A name of at most 14 characters, which takes no allocation; a copy of "a" is called "a'".
class Named {
public:
    Named(Journal& written_to, const char* own_name) : name(own_name), journal(written_to) {}
    Named(const Named& other) : name(other.name + "'"), journal(other.journal) {}
    Named& operator=(const Named&) = delete;
    ~Named() = default;

    void log(const char* action, const char* more = "") const { journal.write(action, name, more); }

    const std::string name;

private:
    Journal& journal;
};

// Logs when it is freed.
template <class Base>
class Freed : public Base {
public:
    Freed(Journal& journal, const char* name) : named(journal, name) {}
    Freed(const Freed&) = default;
    Freed& operator=(const Freed&) = delete;
    ~Freed() override { named.log("free "); }

    Named named;
};

// Logs when it is freed or cloned.
template <class Base>
class Cloned : public Freed<Base> {
public:
    using Freed<Base>::Freed;

    Cloned* clone() const override {
        this->named.log("clone ");
        return new Cloned(*this);
    }
};

class LoggedAttribute : public Freed<QOVA_MediaAttribute> {
public:
    using Freed::Freed;

    LoggedAttribute* clone() const override {
        named.log("clone ");
        return new LoggedAttribute(*this);
    }
    operator const std::string() const override {
        named.log("text of ");
        return named.name;
    }
    bool operator==(const QOVA_MediaAttribute& other) const override {
        const std::string& other_name = dynamic_cast<const LoggedAttribute&>(other).named.name;
        named.log("compare ", (" with " + other_name).c_str());
        return equal;
    }

    bool equal = true;
};

class LoggedAddress : public Freed<IPAddress> {
public:
    using Freed::Freed;

    INetAddress* Copy() const override {
        named.log("copy ");
        return new LoggedAddress(*this);
    }
    std::string ToString() const override {
        named.log("text of ");
        return named.name;
    }
    bool IsEqual(const std::string& /*text*/) const override {
        named.log("is equal ");
        return !differs;
    }
    bool operator!=(const std::string& text) const override {
        named.log("differs ", (" from " + text).c_str());
        return differs;
    }
    int IsAny() const override {
        named.log("is any ");
        return any;
    }

    bool differs = false;
    int any = 0;
};

#endif
