# A state change event runs both steps of the RRC state machine, without a fault.
args: 7 1 1606
