auto make = [] { struct Local { int a; }; return Local{1}; };
int after;
