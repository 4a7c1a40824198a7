static const double kPi = 3.14159;
