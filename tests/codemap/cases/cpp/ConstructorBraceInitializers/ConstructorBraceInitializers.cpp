A::A(int a) : B{a}, list{1, 2, {3}}, call([] { return 1; }) {
    run();
}
int after;
