#ifndef ZM_CONTRACT_SET_UP_HPP
#define ZM_CONTRACT_SET_UP_HPP

/// Runs before each check, in its process. Define it in your own program where your host has to be started
/// before host/ can be used; without a definition nothing runs.
extern "C" __attribute__((weak)) void zmHostContractSetUp();

#endif
