<?xml version="1.0" encoding="UTF-8"?>
<tileset version="1.8" tiledversion="1.8.2" name="tiles" tilewidth="8" tileheight="8" tilecount="4" columns="2">
 <image source="tiles.png" width="16" height="16"/>
 <tile id="3">
  <animation>
   <frame tileid="3" duration="100"/>
   <frame tileid="2" duration="200"/>
  </animation>
 </tile>
</tileset>
