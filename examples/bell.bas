10 REM THE DROWNED BELL: AN ADVENTURE IN WORDS
20 CLEAR 450:DEFINT A-Z:GOTO 900
90 REM ONE TURN: VERB V, OBJECT N, 0 FOR NONE THAT IS KNOWN
100 IF NW THEN NW=0:GOSUB 1000
110 COLOUR 6:PRINT:LINE INPUT "> ";A$:COLOUR 2:W$="":V=0:N=0:TM=TM+1
120 A$=A$+" ":FOR I=1 TO LEN(A$):C=ASC(MID$(A$,I,1)):IF C>96 THEN C=C-32
130 IF C<>32 THEN W$=W$+CHR$(C):GOTO 180
140 IF W$="" THEN 180 ELSE W$="/"+LEFT$(W$+"  ",3)
150 IF V=0 THEN V=(INSTR(V1$,W$)+3)/4:IF V=0 THEN V=(INSTR(V2$,W$)+3)/4:IF V THEN V=V+24 ELSE V=99
160 IF N=0 THEN N=(INSTR(N$,W$)+3)/4
170 IF V=13 AND D=0 THEN D=(INSTR(V1$,W$)+3)/4:IF D>12 THEN D=0
175 W$=""
180 NEXT:IF V=0 THEN TM=TM-1:GOTO 110
190 IF V=13 THEN V=D:IF D=0 THEN T$="Go where?":GOTO 280
200 D=0:IF V>0 AND V<13 THEN 300
210 DK=(R=7 OR R=13) AND NOT (LT AND (O(1)=-1 OR O(1)=R))
220 ON V-13 GOTO 400,400,450,450,500,500,600,650,650,650,700,700,750,770,770,800,800,830,850,860,2000,870,870,890,895,898
230 T$="I do not know that word. Try HELP.":TM=TM-1:GOTO 280
240 T$="You cannot do that."
280 GOSUB 3000
290 REM THE TIDE
291 IF TM=80 THEN T$="The tide has turned.":GOSUB 3000
292 IF TM=110 THEN T$="Water runs over the sand. Not much time is left!":GOSUB 3000
293 IF TM<130 THEN 100
294 T$="The sea comes in. Out in the fog a horn sounds twice, and not again. Without the bell the boats have found the reef.":GOSUB 3000:GOTO 2500
300 REM A WAY: NORTH, SOUTH, EAST, WEST, UP, DOWN
310 IF V>6 THEN V=V-6
320 Q=M(R,V):IF Q=0 THEN T$="There is no way.":GOTO 280
330 IF R=9 AND V=2 AND PL=0 THEN T$="The gap is too wide to jump, and the mud has no bottom.":GOTO 280
340 IF R=10 AND V=2 AND GA=0 THEN T$="The gate is locked.":GOTO 280
350 IF R=14 AND V=5 AND HU=0 THEN T$="The ladder has rotted away. The first beam is far above you.":GOTO 280
360 R=Q:NW=1:GOTO 290
400 NW=1:GOTO 290
450 T$="You carry":FOR I=1 TO 15:IF O(I)=-1 THEN GOSUB 3200:T$=T$+" "+B$+","
460 NEXT:IF T$="You carry" THEN T$="You carry nothing." ELSE T$=LEFT$(T$,LEN(T$)-1)+"."
470 GOTO 280
500 IF DK THEN T$="You grope about in the dark.":GOTO 280
510 IF N=0 THEN T$="Take what?":GOTO 280
520 IF O(N)=-1 THEN T$="You have it.":GOTO 280
530 IF O(N)<>R THEN T$="It is not here.":GOTO 280
540 IF N>10 AND N<15 THEN 240
550 IF N=7 AND FD=0 THEN T$="The gull goes for your eyes. You step back.":GOTO 280
560 IF N=6 AND PL OR N=15 AND HU THEN T$="You need it where it is.":GOTO 280
570 J=0:FOR I=1 TO 15:IF O(I)=-1 THEN J=J+1
580 NEXT:IF J>5 THEN T$="Your arms are full.":GOTO 280
590 O(N)=-1:T$="Taken.":GOTO 280
600 IF N=0 THEN T$="Drop what?":GOTO 280
610 IF O(N)<>-1 THEN T$="You do not have it.":GOTO 280
620 O(N)=R:T$="Dropped.":GOTO 280
650 IF N=0 OR DK THEN NW=1:GOTO 290
660 IF O(N)<>-1 AND O(N)<>R THEN T$="It is not here.":GOTO 280
670 RESTORE 7000:FOR I=1 TO N:READ T$:NEXT:GOTO 280
700 IF N=13 AND R=10 AND O(7)=-1 AND GA=0 THEN GA=1:SC=SC+10:T$="The key turns with a shriek. The gate is open.":GOTO 280
710 IF N=13 AND R=10 THEN T$="It is locked, and you have no key.":IF GA THEN T$="It is open.":GOTO 280 ELSE 280
720 IF N<>12 OR R<>13 OR DK THEN 240
730 IF O(5)<>-1 THEN T$="The lid is too heavy for bare hands.":GOTO 280
740 IF CH THEN T$="It is open.":GOTO 280 ELSE CH=1:SC=SC+20:O(9)=13:T$="You put the crowbar to the lid. It slides and breaks. Between white bones lies the clapper of a bell!":GOTO 280
750 IF N<>1 OR O(1)<>-1 THEN 240
755 IF O(2)<>-1 THEN T$="You have no fire.":GOTO 280
760 IF LT=0 THEN LT=-1:SC=SC+10
765 T$="The lamp burns with a yellow flame.":NW=(R=7 OR R=13):GOTO 280
770 IF R<>8 OR N<>3 AND N<>11 OR O(3)<>-1 THEN 240
780 O(3)=0:FD=1:SC=SC+10:T$="The gull snatches the bread and flies off with a laugh.":O(11)=0:GOTO 280
800 IF N=9 THEN 870
810 IF R<>9 OR N<>6 OR O(6)<>-1 THEN IF N THEN 610 ELSE 240
820 PL=1:SC=SC+15:O(6)=9:T$="You lay the plank across the gap. It will carry you.":GOTO 280
830 IF O(4)<>-1 OR O(8)<>-1 THEN 240
840 O(4)=0:O(8)=0:O(15)=-1:SC=SC+10:T$="You tie the rope to the iron hook. That makes a fine grapnel.":GOTO 280
850 IF N=4 AND R=14 AND O(15)<>-1 THEN T$="The rope comes down again. Nothing holds it up there.":GOTO 280
855 IF R<>14 OR O(15)<>-1 THEN 240 ELSE O(15)=14:HU=1:SC=SC+10:T$="At the third throw the hook bites into the beam. The rope hangs down.":GOTO 280
860 IF R=14 THEN V=5:GOTO 320 ELSE 240
870 IF R<>15 OR O(9)<>-1 THEN 240
880 O(9)=0:CL=1:SC=SC+10:T$="You hang the clapper into the bell. It fits as if it had never been away.":GOTO 280
890 GOSUB 2600:GOTO 290
895 T$="Say it in one or two words: N (north), TAKE LAMP, READ BOOK, I (inventory), L (look), SCORE, QUIT. Other verbs: DROP, LIGHT, OPEN, GIVE, LAY, TIE, THROW, CLIMB, HANG, RING.":GOTO 280
898 GOTO 2500
900 REM THE BEGINNING
910 DIM M(16,6),O(15):RESTORE:FOR I=1 TO 16:READ A$,A$:FOR J=1 TO 6:READ M(I,J):NEXT J,I
920 FOR I=1 TO 15:READ A$,O(I):NEXT
930 V1$="/N  /S  /E  /W  /U  /D  /NOR/SOU/EAS/WES/UP /DOW/GO /LOO/L  /INV/I  /TAK/GET/DRO/EXA/X  /REA/OPE"
940 V2$="/UNL/LIG/FEE/GIV/LAY/PUT/TIE/THR/CLI/RIN/FIX/HAN/SCO/HEL/QUI"
950 N$="/LAM/MAT/BRE/ROP/CRO/PLA/KEY/HOO/CLA/BOO/GUL/CHE/GAT/BEL/GRA"
960 R=1:NW=1:LT=0:PL=0:GA=0:FD=0:CH=0:HU=0:CL=0:SC=0:TM=0:D=0
970 CLS:COLOUR 10:PRINT TAB(9);"THE DROWNED BELL":PRINT:COLOUR 2
980 T$="Fog has come, and all the boats are out. Only the bell of the drowned abbey could call them home, but it has been silent for a hundred years.":GOSUB 3000
990 T$="The tide is low, but not for long.":GOSUB 3000:PRINT:COLOUR 7:PRINT "HELP tells how to play.":GOTO 100
1000 REM WHERE YOU ARE
1010 PRINT:IF (R=7 OR R=13) AND NOT (LT AND (O(1)=-1 OR O(1)=R)) THEN T$="It is pitch dark. You hear water drip.":GOTO 3000
1020 RESTORE 5000:FOR I=1 TO R:READ A$,T$,Q,Q,Q,Q,Q,Q:NEXT
1030 COLOUR 5:PRINT A$:COLOUR 2:GOSUB 3000
1040 IF R=9 THEN IF PL THEN T$="A plank lies across the gap.":GOSUB 3000
1050 IF R=14 THEN IF HU THEN T$="A rope hangs from the first beam.":GOSUB 3000
1060 COLOUR 7:FOR I=1 TO 15:IF O(I)<>R OR I=6 AND PL OR I=15 AND HU THEN 1080
1070 GOSUB 3200:T$="There is "+B$+" here.":GOSUB 3000
1080 NEXT:COLOUR 2:T$="Ways:":FOR I=1 TO 6:IF M(R,I) THEN T$=T$+" "+MID$("northsoutheast west up   down ",I*5-4,5)
1090 NEXT:GOTO 3000
2000 REM RING THE BELL
2010 IF R<>15 THEN 240
2020 IF CL=0 THEN T$="You swing the bell. It has no clapper, and makes no sound.":GOTO 280
2030 T$="Deep and clear the drowned bell calls over the sea, and calls, and calls ...":GOSUB 3000
2040 SC=SC+5:FOR J=1 TO 7:PLAY(1,3,1,15):PLAY(2,4,4,13):PLAY(3,4,8,13):FOR I=8 TO 10:SOUND I,16:NEXT
2050 SOUND 11,0:SOUND 12,250:SOUND 13,0:FOR I=1 TO 1500:NEXT I,J:FOR I=8 TO 10:SOUND I,0:NEXT
2060 T$="A light swims out of the fog, then another. One by one the boats come home, and not one is missing.":GOSUB 3000
2070 COLOUR 5:PRINT:PRINT TAB(11);"YOU HAVE DONE IT"
2500 REM THE END
2510 GOSUB 2600:COLOUR 6:LINE INPUT "Once more? ";A$
2520 A$=LEFT$(A$,1):IF A$="Y" OR A$="y" THEN RUN ELSE COLOUR 2:END
2600 COLOUR 5:PRINT "You have";SC;"of 100 points in";TM;"turns.":RETURN
3000 REM T$ IN LINES OF 39 CHARACTERS, BROKEN AT BLANKS
3010 IF LEN(T$)<40 THEN PRINT T$:RETURN
3020 FOR L=40 TO 2 STEP -1:IF MID$(T$,L,1)<>" " THEN NEXT
3030 PRINT LEFT$(T$,L-1):T$=MID$(T$,L+1):GOTO 3010
3200 REM B$: NAME OF OBJECT I
3210 RESTORE 6000:FOR L=1 TO I:READ B$,Q:NEXT:RETURN
5000 REM ROOMS: NAME, TEXT, WHERE THE SIX WAYS LEAD
5010 DATA "The Quay","Nets hang in the fog like webs. A lane climbs north, steps lead south to the strand. In the east the door of the shop stands open.",2,6,3,0,0,0
5020 DATA "The Lane","Low houses. Your cottage is in the west, the chapel in the north. A path leads east to the cliff.",5,1,8,4,0,0
5030 DATA "The Shop","Tar, tallow and tin. The shopkeeper is out with the boats. He would lend you anything today.",0,0,0,1,0,0
5040 DATA "Your Cottage","One room, one window, and a fire that has gone out.",0,0,2,0,0,0
5050 DATA "The Chapel","Candles burn for those at sea. Names of the drowned cover the walls.",0,2,0,0,0,0
5060 DATA "The Strand","Ribbed sand and pools. In the west the cliff has a black mouth. A row of posts goes south to the abbey.",1,9,0,7,0,0
5070 DATA "The Sea Cave","What the sea did not want lies on the floor.",0,0,6,0,0,0
5080 DATA "The Cliff","Grass, wind, and nothing below you. There is a nest at the edge.",0,0,0,2,0,0
5090 DATA "The Causeway","Stones lead from post to post. In the middle they have sunk, and left a gap of quaking mud. The abbey looms in the south.",6,10,0,0,0,0
5100 DATA "The Rock","Walls without windows rise before you. The way in is a gate in the south.",9,11,0,0,0,0
5110 DATA "The Cloister","Arches round a pool that was a garden. Crabs walk where monks did.",10,0,12,16,0,0
5120 DATA "The Nave","The roof is gone, and fog lies in the church like milk. Stairs lead down. In the east opens the tower.",0,0,14,11,0,13
5130 DATA "The Crypt","The dead lie in the walls, tight as herrings.",0,0,0,0,12,0
5140 DATA "The Tower","A shaft of stone, four times your height, with a beam across. Above it there is light.",0,0,0,12,15,0
5150 DATA "The Belfry","You are above the fog: a white floor, and masts that stick out of it, in all the wrong places.",0,0,0,0,0,14
5160 DATA "The Refectory","Long tables, laid with shells. Somebody broke in once, and left in haste.",0,0,11,0,0,0
6000 REM THINGS, AND WHERE THEY ARE
6010 DATA "a lamp",4,"a box of matches",3,"a loaf of bread",4,"a coil of rope",3,"a crowbar",16,"a long plank",7,"a rusty key",8,"an iron hook",6
6020 DATA "the clapper",0,"an old book",5,"an angry gull",8,"a stone chest",13,"an iron gate",10,"the great bell",15,"a grapnel",0
7000 REM WHAT ONE SEES OF THEM
7010 DATA "It is full of oil.","Three are left, and dry.","It is of yesterday.","Strong, and long enough for a mast.","Bent, but strong.","Ship's timber, as long as two men."
7020 DATA "It is as long as your hand. A fish is cut into it.","It held a boat once. It has a ring for a rope."
7030 DATA "As long as your arm, and of bronze."
7040 DATA "It says: THE BELL LOST ITS TONGUE WHEN THE SEA CAME. THE BRETHREN LAID IT TO REST WITH THEIR DEAD."
7050 DATA "It sits on something that shines, and looks hungry.","A saint of stone lies on the lid.","A fish of iron is its lock.","It is green with age, but sound.","Rope and hook."
RUN
