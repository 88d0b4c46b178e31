#ifndef ZM_TESTS_REFERENCE_HOST_VALUES_MISUSE_HPP
#define ZM_TESTS_REFERENCE_HOST_VALUES_MISUSE_HPP

#include "host/Exceptions.hpp"
#include "reference_host/support/ErrorCatalog.hpp"
#include "reference_host/support/Ledger.hpp"

#include <gtest/gtest.h>

#include <string>

namespace reference_host {

/// States that the body is refused with this key of the host's own catalog; returns the text.
template <class Body>
std::string refusedWith(const std::string& key, Body body)
{
    try {
        body();
    } catch (const zmsvException& error) {
        EXPECT_EQ(error.id().catalog(), hostCatalog);
        EXPECT_EQ(error.id().key(), key) << error.what();
        return error.what();
    }
    ADD_FAILURE() << "not refused with " << key;
    return {};
}

/// As above, for a misuse, which the ledger has counted with the same text.
template <class Body>
std::string misusedWith(const std::string& key, Body body)
{
    const std::size_t before = Ledger::misuses().size();
    std::string text = refusedWith(key, body);
    EXPECT_EQ(Ledger::misuses().size(), before + 1);
    if (Ledger::misuses().size() > before) {
        EXPECT_EQ(Ledger::misuses().back(), text);
    }
    return text;
}

}  // namespace reference_host

#endif
