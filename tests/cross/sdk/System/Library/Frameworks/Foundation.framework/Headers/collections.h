// Arrays and dictionaries, with what the literals @[] and @{} and `for in` compile to.
#pragma once

#include <Foundation/basics.h>

#pragma clang assume_nonnull begin

@interface NSArray<__covariant ObjectType> : NSObject <NSCopying, NSFastEnumeration>
@property(readonly) NSUInteger count;
@property(nullable, readonly) ObjectType firstObject;
@property(nullable, readonly) ObjectType lastObject;
+ (instancetype)array;
+ (instancetype)arrayWithObject:(ObjectType)object;
+ (instancetype)arrayWithObjects:(const ObjectType _Nonnull[_Nullable])objects
                           count:(NSUInteger)count;
- (ObjectType)objectAtIndex:(NSUInteger)index;
- (BOOL)containsObject:(ObjectType)object;
- (NSUInteger)indexOfObjectIdenticalTo:(ObjectType)object;
- (NSArray<ObjectType>*)sortedArrayUsingComparator:(NSComparator)comparator;
@end

@interface NSMutableArray<ObjectType> : NSArray <ObjectType>
+ (instancetype)arrayWithCapacity:(NSUInteger)capacity;
- (void)addObject:(ObjectType)object;
- (void)addObjectsFromArray:(NSArray<ObjectType>*)objects;
@end

@interface NSDictionary<__covariant KeyType, __covariant ObjectType>
    : NSObject <NSCopying, NSFastEnumeration>
@property(readonly) NSUInteger count;
@property(readonly, copy) NSArray<KeyType>* allKeys;
+ (instancetype)dictionary;
+ (nullable NSDictionary<NSString*, ObjectType>*)dictionaryWithContentsOfFile:(NSString*)path;
+ (instancetype)dictionaryWithObject:(ObjectType)object forKey:(KeyType<NSCopying>)key;
+ (instancetype)dictionaryWithObjects:(const ObjectType _Nonnull[_Nullable])objects
                              forKeys:(const KeyType<NSCopying> _Nonnull[_Nullable])keys
                                count:(NSUInteger)count;
- (nullable ObjectType)objectForKey:(KeyType)key;
@end

@interface NSMutableDictionary<KeyType, ObjectType> : NSDictionary <KeyType, ObjectType>
+ (instancetype)dictionaryWithCapacity:(NSUInteger)capacity;
- (void)setObject:(ObjectType)object forKey:(KeyType<NSCopying>)key;
- (void)removeObjectForKey:(KeyType)key;
@end

#pragma clang assume_nonnull end
