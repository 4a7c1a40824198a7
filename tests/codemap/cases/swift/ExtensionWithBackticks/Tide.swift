extension `Type`.`Protocol` { func a() {} }
