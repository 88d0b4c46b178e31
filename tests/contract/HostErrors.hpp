#ifndef ZM_TESTS_CONTRACT_HOST_ERRORS_HPP
#define ZM_TESTS_CONTRACT_HOST_ERRORS_HPP

#include "host/Exceptions.hpp"

#include <gtest/gtest.h>

#include <string>

/// States that an operation is refused with a host error whose text names it.
template <class Body>
void expectHostError(const std::string& operation, Body body)
{
    try {
        body();
        ADD_FAILURE() << operation << " is not refused";
    } catch (const zmsvException& error) {
        EXPECT_NE(std::string(error.what()).find(operation), std::string::npos) << error.what();
    }
}

#endif
