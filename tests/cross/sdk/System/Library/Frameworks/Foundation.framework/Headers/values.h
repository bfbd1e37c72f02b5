// Strings, bytes, numbers, dates, errors and attributed text.
#pragma once

#include <Foundation/basics.h>

#pragma clang assume_nonnull begin

typedef NSUInteger NSStringEncoding;
enum : NSStringEncoding {
  NSASCIIStringEncoding = 1,
  NSUTF8StringEncoding = 4,
  NSISOLatin1StringEncoding = 5
};

@interface NSCharacterSet : NSObject <NSCopying>
@property(class, readonly, copy) NSCharacterSet* whitespaceCharacterSet;
@end

@interface NSString : NSObject <NSCopying>
@property(readonly) NSUInteger length;
@property(nullable, readonly) const char* UTF8String __attribute__((objc_returns_inner_pointer));
@property(readonly) const char* fileSystemRepresentation __attribute__((objc_returns_inner_pointer))
;
+ (nullable instancetype)stringWithUTF8String:(const char*)bytes;
+ (instancetype)stringWithCharacters:(const unichar*)characters length:(NSUInteger)length;
+ (instancetype)stringWithFormat:(NSString*)format, ...;
- (nullable instancetype)initWithBytes:(const void*)bytes
                                length:(NSUInteger)length
                              encoding:(NSStringEncoding)encoding;
- (unichar)characterAtIndex:(NSUInteger)index;
- (nullable NSData*)dataUsingEncoding:(NSStringEncoding)encoding;
- (nullable NSData*)dataUsingEncoding:(NSStringEncoding)encoding allowLossyConversion:(BOOL)lossy;
- (BOOL)isEqualToString:(NSString*)other;
- (BOOL)hasPrefix:(NSString*)text;
- (BOOL)hasSuffix:(NSString*)text;
- (NSString*)stringByAppendingString:(NSString*)text;
- (NSString*)stringByAppendingPathComponent:(NSString*)name;
- (NSString*)substringToIndex:(NSUInteger)end;
- (NSString*)stringByTrimmingCharactersInSet:(NSCharacterSet*)characters;
- (NSRange)rangeOfComposedCharacterSequenceAtIndex:(NSUInteger)index;
- (NSRange)rangeOfString:(NSString*)text;
@end

@interface NSData : NSObject <NSCopying>
@property(readonly) NSUInteger length;
@property(readonly) const void* bytes __attribute__((objc_returns_inner_pointer));
+ (instancetype)data;
+ (instancetype)dataWithBytes:(nullable const void*)bytes length:(NSUInteger)length;
- (BOOL)writeToFile:(NSString*)path atomically:(BOOL)atomically;
@end

@interface NSValue : NSObject <NSCopying>
@property(readonly) const char* objCType __attribute__((objc_returns_inner_pointer));
@end

@interface NSNumber : NSValue
@property(readonly) BOOL boolValue;
@property(readonly) int intValue;
@property(readonly) double doubleValue;
@property(readonly) long long longLongValue;
@property(readonly) unsigned long long unsignedLongLongValue;
@property(readonly) NSInteger integerValue;
- (NSComparisonResult)compare:(NSNumber*)other;
+ (NSNumber*)numberWithBool:(BOOL)value;
+ (NSNumber*)numberWithChar:(char)value;
+ (NSNumber*)numberWithFloat:(float)value;
+ (NSNumber*)numberWithInt:(int)value;
+ (NSNumber*)numberWithInteger:(NSInteger)value;
+ (NSNumber*)numberWithUnsignedInteger:(NSUInteger)value;
+ (NSNumber*)numberWithLong:(long)value;
+ (NSNumber*)numberWithUnsignedLong:(unsigned long)value;
+ (NSNumber*)numberWithLongLong:(long long)value;
+ (NSNumber*)numberWithUnsignedLongLong:(unsigned long long)value;
+ (NSNumber*)numberWithDouble:(double)value;
@end

@interface NSDate : NSObject <NSCopying>
@property(readonly) NSTimeInterval timeIntervalSinceReferenceDate;
@property(readonly) NSTimeInterval timeIntervalSince1970;
@property(readonly) NSTimeInterval timeIntervalSinceNow;
- (instancetype)initWithTimeIntervalSinceNow:(NSTimeInterval)seconds;
+ (instancetype)date;
+ (instancetype)dateWithTimeIntervalSinceNow:(NSTimeInterval)seconds;
+ (instancetype)dateWithTimeIntervalSince1970:(NSTimeInterval)seconds;
@property(class, readonly, copy) NSDate* distantPast;
@property(class, readonly, copy) NSDate* distantFuture;
- (NSComparisonResult)compare:(NSDate*)other;
@end

@interface NSError : NSObject <NSCopying>
@property(readonly, copy) NSString* domain;
@property(readonly) NSInteger code;
@property(readonly, copy) NSString* localizedDescription;
@property(nullable, readonly, copy) NSString* localizedFailureReason;
@end

@interface NSURL : NSObject <NSCopying>
@property(nullable, readonly, copy) NSString* path;
+ (NSURL*)fileURLWithPath:(NSString*)path;
@end

typedef NSString* NSAttributedStringKey;

@interface NSAttributedString : NSObject <NSCopying>
@property(readonly, copy) NSString* string;
@property(readonly) NSUInteger length;
- (instancetype)initWithString:(NSString*)text;
- (instancetype)initWithString:(NSString*)text
                    attributes:(nullable NSDictionary<NSAttributedStringKey, id>*)attributes;
- (nullable id)attribute:(NSAttributedStringKey)name
                 atIndex:(NSUInteger)index
          effectiveRange:(nullable NSRange*)range;
@end

#pragma clang assume_nonnull end
