// SPDX-License-Identifier: Apache-2.0
//
// Carries the precompiled header of the test programs, see AviTesting.cmake; it has nothing to do.
