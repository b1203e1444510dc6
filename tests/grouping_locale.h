// A global locale that groups digits and names truth values: "1.234.567", "wahr". No log text may
// depend on it.

#ifndef QOVA_TESTS_GROUPING_LOCALE_H
#define QOVA_TESTS_GROUPING_LOCALE_H

#include <locale>
#include <string>

// Sets the global locale for its own lifetime.
class GroupingLocale {
public:
    GroupingLocale() : before(std::locale::global(std::locale(std::locale(), new Grouping))) {}
    ~GroupingLocale() { std::locale::global(before); }
    GroupingLocale(const GroupingLocale&) = delete;
    GroupingLocale& operator=(const GroupingLocale&) = delete;

private:
    class Grouping : public std::numpunct<char> {
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
        std::string do_truename() const override { return "wahr"; }
        std::string do_falsename() const override { return "falsch"; }
    };

    std::locale before;
};

#endif
