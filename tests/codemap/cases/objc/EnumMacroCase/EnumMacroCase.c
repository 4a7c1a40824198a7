enum kind { one, MORE(two, 2), three };
