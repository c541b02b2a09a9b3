// GNUstep's headers include this name and need nothing from it.
