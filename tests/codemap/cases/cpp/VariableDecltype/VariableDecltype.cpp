decltype(run()) a = run();
decltype(a) b{a};
