JNIEXPORT void JNICALL JAVA_NAME(onTouch)(void *env, int x) { }
