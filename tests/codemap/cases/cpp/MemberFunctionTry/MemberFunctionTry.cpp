struct A {
    void run() try { rise(); } catch (int) { }
    int after;
};
