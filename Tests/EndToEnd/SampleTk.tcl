# A window with Tk's own controls that writes down what happens to them, as SampleGTK.py does.
#
# Usage: wish SampleTk.tcl FILE

set log [open [lindex $argv 0] w]
fconfigure $log -buffering line
puts $log "version [info patchlevel]"
wm title . "Tk"
wm geometry . 600x400

button .button -text Premi -command {puts $log button}
checkbutton .check -text Spunta -command {puts $log check}

listbox .rows -exportselection 0
for {set number 0} {$number < 4} {incr number} {
    .rows insert end "Riga $number"
}
bind .rows <<ListboxSelect>> {puts $log "row [.rows curselection]"}

text .text -wrap none -xscrollcommand {scrolled horizontal} -yscrollcommand {scrolled vertical}
set line "primo secondo terzo [string repeat {e altro ancora } 20]\n"
.text insert end [string repeat $line 200]
bind .text <<Selection>> {
    if {[.text tag ranges sel] ne ""} {
        puts $log "selected [.text get sel.first sel.last]"
    }
}
proc scrolled {name from to} {
    global log
    if {$from > 0} {
        puts $log "$name $from"
    }
}

menu .menu -tearoff 0
.menu add command -label Copia
bind .text <Button-3> {tk_popup .menu %X %Y}

place .button -x 20 -y 20 -width 120 -height 40
place .check -x 20 -y 80 -width 120 -height 40
place .rows -x 20 -y 140 -width 120 -height 160
place .text -x 160 -y 20 -width 400 -height 340

proc writePlace {name widget {box {}}} {
    global log
    set x [expr {[winfo rootx $widget] - [winfo rootx .]}]
    set y [expr {[winfo rooty $widget] - [winfo rooty .]}]
    set width [winfo width $widget]
    set height [winfo height $widget]
    if {$box ne ""} {
        lassign $box left top width height
        incr x $left
        incr y $top
    }
    puts $log "part $name $x,$y,$width,$height"
}
proc word {first last} {
    lassign [.text bbox $first] x y width height
    return [list $x $y [expr {[lindex [.text bbox $last] 0] - $x}] $height]
}

update
writePlace button .button
writePlace check .check
writePlace row .rows [.rows bbox 2]
writePlace text .text
writePlace first .text [word 1.0 1.5]
writePlace second .text [word 1.6 1.13]
puts $log ready
