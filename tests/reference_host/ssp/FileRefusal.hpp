#ifndef ZM_TESTS_REFERENCE_HOST_SSP_FILE_REFUSAL_HPP
#define ZM_TESTS_REFERENCE_HOST_SSP_FILE_REFUSAL_HPP

#include "reference_host/ssp/FileErrors.hpp"

#include <gtest/gtest.h>

#include <string>

namespace reference_host {

/// States that the body is refused with this key of the files' catalog; returns the text.
template <class Body>
std::string fileRefusal(const std::string& key, Body body)
{
    try {
        body();
    } catch (const zmsvException& error) {
        EXPECT_EQ(error.id().catalog(), fileCatalog) << error.what();
        EXPECT_EQ(error.id().key(), key) << error.what();
        return error.what();
    }
    ADD_FAILURE() << "not refused with " << key;
    return {};
}

}  // namespace reference_host

#endif
