consteval int three() { return 3; }
