// The Objective-C runtime's basic types (Apple's objc/objc.h). On arm64, the
// one architecture the application is built for, BOOL is C's bool
// (__OBJC_BOOL_IS_BOOL); it is declared so here whatever the checking machine's
// architecture, so that code relying on BOOL being a signed char fails here as
// it would on a Mac.
#pragma once

typedef bool BOOL;
#define YES __objc_yes
#define NO __objc_no
#ifndef nil
#define nil nullptr
#endif
