// A thread's name and quality of service as a Mac's system library takes them, on Linux: the name
// is set, the quality is remembered.
#pragma once

#include <pthread.h>

typedef enum : unsigned { QOS_CLASS_UNSPECIFIED = 0, QOS_CLASS_BACKGROUND = 0x09 } qos_class_t;

int pthread_setname_np(const char* name);
int pthread_set_qos_class_self_np(qos_class_t quality, int relativePriority);
qos_class_t qos_class_self();
