class A {
    int a GUARDED_BY(mutex_);
    std::string b_ GUARDED_BY(mutex_) = "x";
    void run() EXCLUSIVE_LOCKS_REQUIRED(mutex_);
};
