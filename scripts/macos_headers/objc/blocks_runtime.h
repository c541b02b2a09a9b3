// GNUstep's headers include this name; a syntax check needs nothing from it.
