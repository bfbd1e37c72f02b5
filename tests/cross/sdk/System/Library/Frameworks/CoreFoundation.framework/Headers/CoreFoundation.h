// The C part of Foundation: as much of it as the macOS host calls.
#pragma once

#include <Availability.h>
#include <stdbool.h>
#include <stdint.h>

// A typed enumeration, and a set of flags whose members combine to the set's own type.
#define QM_ENUM(type, name)      \
  typedef enum name : type name; \
  enum name : type
#define QM_FLAGS(type, name) \
  typedef type name;         \
  enum name##_ : type

#pragma clang assume_nonnull begin
extern "C" {

typedef unsigned char Boolean;
typedef unsigned long CFTypeID;
typedef long CFIndex;
typedef const void* CFTypeRef;
typedef const struct __CFBoolean* CFBooleanRef;
typedef const struct __CFNumber* CFNumberRef;

typedef double CGFloat;
struct CGPoint {
  CGFloat x, y;
};
typedef struct CGPoint CGPoint;
struct CGSize {
  CGFloat width, height;
};
typedef struct CGSize CGSize;
struct CGRect {
  CGPoint origin;
  CGSize size;
};
typedef struct CGRect CGRect;

extern const CFBooleanRef kCFBooleanTrue;
extern const CFBooleanRef kCFBooleanFalse;

CFTypeID CFGetTypeID(CFTypeRef object);
CFTypeID CFBooleanGetTypeID(void);
Boolean CFNumberIsFloatType(CFNumberRef number);
}
#pragma clang assume_nonnull end
