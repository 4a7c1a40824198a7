_Thread_local int perThread;
__thread int old;
