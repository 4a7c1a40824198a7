typedef int callback(void *context);
