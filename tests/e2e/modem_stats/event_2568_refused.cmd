# Cause 9 is no handover: the summary prints, then the validity gate refuses.
args: 7 1 2568
